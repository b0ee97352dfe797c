"""What bench/run and bench/server share: projects of a given size, measured processes, and the server as a client sees it."""
import json
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys
import time

TOP = pathlib.Path(__file__).resolve().parent.parent


def program_of(arguments):
    """The program to measure: the first argument, or the one of this tree's build."""
    return str(pathlib.Path(arguments[1] if len(arguments) > 1 else TOP / "build/bin/ncx_cli").resolve())


def measure(command, folder, fresh=(), repeats=3):
    """Milliseconds and peak memory in MiB of a command, the best of several runs; before each, `fresh` is copied."""
    best = None
    for _ in range(repeats):
        if fresh:
            shutil.copy(*fresh)
        started = time.monotonic()
        process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        took = (time.monotonic() - started) * 1000
        process.returncode = status
        if status != 0:
            sys.exit(f"{' '.join(command)} failed: {status}")
        if best is None or took < best[0]:
            best = (took, usage.ru_maxrss / 1024)
    return best


class Server:
    def __init__(self, program, mode="--mcp", folder=None):
        self.process = subprocess.Popen([program, mode], cwd=folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def request(self, method, **params):
        """The reply to a request."""
        self.process.stdin.write(json.dumps({"id": 1, "method": method, "params": params}).encode() + b"\n")
        self.process.stdin.flush()
        return self.process.stdout.readline()

    def call(self, tool, **arguments):
        """Milliseconds until the reply to a call was there."""
        started = time.monotonic()
        reply = self.request("tools/call", name=tool, arguments=arguments)
        took = (time.monotonic() - started) * 1000
        if b'"result"' not in reply:
            sys.exit(f"{tool} failed: {reply.decode()}")
        return took

    def memory(self):
        """Resident memory in MiB."""
        pages = int(pathlib.Path(f"/proc/{self.process.pid}/statm").read_text().split()[1])
        return pages * os.sysconf("SC_PAGE_SIZE") / 2**20

    def close(self):
        self.process.stdin.close()
        self.process.wait()


def first_reply(program):
    """Milliseconds from the start of a server to its first reply, the best of five."""
    best = None
    for _ in range(5):
        started = time.monotonic()
        server = Server(program)
        server.request("initialize", protocolVersion="2024-11-05", capabilities={},
                       clientInfo={"name": "bench", "version": "1"})
        took = (time.monotonic() - started) * 1000
        server.close()
        best = took if best is None else min(best, took)
    return best


def make_base(path, settings=""):
    """A text project in which every output of a CANopen FD line is switched on, into which objects can be imported."""
    text = (TOP / "examples/fd_device/sensor.ncxt").read_text(encoding="utf-8")
    enabled = "[GeneralSettings]\nlimit_check=1\ngen_csharp_props=1\ngenerate_cpp_output=1\n" + settings
    path.write_text(text.replace("[GeneralSettings]\n", enabled), encoding="utf-8")


COLUMNS = {
    "Objects0": ("objectindex", "name integer, datatype integer not null, objecttype integer not null, "
                 "description integer, category integer"),
    "SubObjects0": ("objectindex, subindex", "name integer, datatype integer not null, accesstype text not null, "
                    "defaultvalue text, currentvalue text, pdomapping integer, lowlimit text, uplimit text, "
                    "size integer, defaultineds integer, limitineds integer, refuseread integer, "
                    "refusewrite integer, allowedaccesstypes text, implementation integer not null, varname text, "
                    "description integer, category integer"),
}


def make_database(text, path):
    """The objects and general settings of a text project as a file of an old version, which its open completes."""
    database = sqlite3.connect(path)
    database.executescript("""
        create table Strings (id integer primary key, string text);
        create table Nodes (nodeId integer primary key, name text, edspath text, xddpath text);
        create table GeneralSettings (item text unique, value text);
        insert into Nodes values(0, 'can0', '', '');""")
    rows = {table: {} for table in COLUMNS}
    section = None
    for line in text.read_text(encoding="utf-8").splitlines():
        if line.startswith("["):
            section = line[1:-1]
        elif section == "GeneralSettings" and "=" in line:
            database.execute("insert or replace into GeneralSettings values(?, ?)", line.split("=", 1))
        elif section in rows and "=" in line:
            key, value = line.split("=", 1)
            *path_of_row, column = key.split("\\")
            if column == "name":
                value = database.execute("insert into Strings(string) values(?)", (value,)).lastrowid
            rows[section].setdefault(tuple(int(part, 0) for part in path_of_row), {})[column] = value
    for table, (keys, columns) in COLUMNS.items():
        known = {column.split()[0]: "not null" in column for column in columns.split(", ")}
        database.execute(f"create table {table} ({keys.replace(',', ' integer not null,')} integer not null, {columns}, "
                         f"primary key ({keys}))")
        for row, values in rows[table].items():
            given = {column: values.get(column, 0 if required else None) for column, required in known.items()}
            database.execute(f"insert into {table} ({keys}, {', '.join(given)}) values("
                             f"{', '.join('?' * (len(row) + len(given)))})", (*row, *given.values()))
    database.commit()
    database.close()


def make_messages(size, path):
    """A text project of a J1939 line with `size` SPNs, ten in each PGN."""
    sensor = (TOP / "examples/j1939_sensor/sensor.ncxt").read_text(encoding="utf-8")
    lines = [sensor[:sensor.index("[PGNs0]")], "[PGNs0]\n"]
    for i in range(size // 10):
        pgn = 0xFA00 + i
        lines.append(f"{pgn}\\cycletime_ms=100\n{pgn}\\direction=85\n{pgn}\\name=PGN {pgn}\n{pgn}\\priority=6\n")
    lines.append("\n[SPNs0]\n")
    for i in range(size):
        key = f"{0xFA00 + i // 10}\\{1000 + i}"
        lines.append(f"{key}\\bitposition={i % 10 * 8}\n{key}\\bitsize=8\n{key}\\datatype=5\n{key}\\direction=85\n"
                     f"{key}\\implementation=2\n{key}\\name=SPN {i}\n{key}\\pos={i % 10}\n"
                     f"{key}\\varname=spn[{i}]\n")
    path.write_text("".join(lines), encoding="utf-8")


def make_documentation(size, path, project):
    """The text of `size` PGNs as the program writes it, and a text project of a J1939 line that can take it."""
    sensor = (TOP / "examples/j1939_sensor/sensor.ncxt").read_text(encoding="utf-8")
    project.write_text(sensor[:sensor.index("[PGNs0]")], encoding="utf-8")
    with path.open("w", encoding="utf-8") as text:
        handled_by_the_stack = (0xFECA, 0xFED8)
        numbers = (number for number in range(0xF000, 0x40000) if number not in handled_by_the_stack)
        for i, number in zip(range(size), numbers):
            text.write(f"PGN:\t0x{number:X}/{number}\tName:\tPGN {number}\tDirection:\tTX\tCycle Time (ms):\t100\t"
                       f"Priority:\t6\tInhibit Time (ms):\t0\n\tDescription:\tgroup {number}\n"
                       f"\tSPN:\t{i + 1}\tName:\tSPN {i}\tType:\tUNSIGNED8\tSize:\t8\tVariable:\tspn[{i}]\n")


def make_canids(size, path):
    """A database project of a raw CAN line with `size` CAN-IDs of one data element each; a text has none of them."""
    database = sqlite3.connect(path)
    database.executescript("""
        create table Strings (id integer primary key, string text);
        create table Nodes (nodeId integer primary key, name text, edspath text, xddpath text);
        create table GeneralSettings (item text unique, value text);
        create table CANIDs0 (id integer not null, cycletime_ms integer, inhibittime_ms integer, mappingcount integer,
                              direction integer, name integer, desc integer);
        create table DataElements0 (canid integer not null, number integer not null, datatype integer,
                                    implementation integer, varname text, defaultvalue text, name integer,
                                    desc integer, pos integer, bitsize integer, direction integer, bitpos integer);
        insert into Nodes values(0, 'can0', '', '');
        create table MiscSettings (item text unique, value text);
        insert into GeneralSettings values('line0type', '4'), ('co_timer_interval', '1000');
        insert into MiscSettings values('SaveToolType', 'CANopen NodeComposer');""")
    ids = [0x80000000 + i for i in range(size)]
    database.executemany("insert into Strings values(?, ?)", ((i + 1, f"Message {i}") for i in range(size)))
    database.executemany("insert into CANIDs0 values(?, 100, 0, 1, 85, ?, null)",
                         ((canid, i + 1) for i, canid in enumerate(ids)))
    database.executemany("insert into DataElements0 values(?, 1, 5, 2, ?, '0', ?, null, 0, 8, 85, 0)",
                         ((canid, f"element[{i}]", i + 1) for i, canid in enumerate(ids)))
    database.commit()
    database.close()


def make_doctext(size, path):
    """A documentation text of `size` PGNs of one SPN each."""
    path.write_text("PGN/SPN Documentation\n\n" + "".join(
        f"PGN:\t0x{20000 + i:x}/{20000 + i}\tName:\tPGN {i}\tDirection:\tTX\tCycle Time (ms):\t100\tPriority:\t6\n"
        f"\tDescription:\tWhat PGN {i} is\n"
        f"\tSPN:\t{i}\tName:\tSPN {i}\tData type:\tUNSIGNED8\tVariable:\tspn[{i}]\n"
        for i in range(size)), encoding="utf-8")
