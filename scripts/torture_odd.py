"""Stages of scripts/torture that no ordinary day brings: a disk that fills up under a server, files that are none, files
that change under the program, closed streams, requests that are no requests, signals, and system calls that kill or
fail."""
import contextlib
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import socket
import subprocess

GIB = 1 << 30


def heed_signals():
    """A script in the background ignores some."""
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (8 * GIB, 8 * GIB))


class OddStages:
    """Uses the tools of Torture."""

    # ---- A disk that fills up under a server ----

    def serverdisk(self):
        """A disk that fills up at home while a server works: each tool says so, and all goes on when there is room again."""
        if os.geteuid() != 0:
            raise self.skip("needs root for small disks")
        disk, folder = self.folder("disk"), self.folder("serverdisk")
        project, filler = self.project(folder, 60, "ncxt"), disk / "filler"
        with self.small_disk(disk, 4096), self.server_at(disk) as ask:
            def leave(size):
                filler.write_bytes(bytes(1024))
                with contextlib.suppress(OSError), open(filler, "ab", buffering=0) as file:
                    while file.write(bytes(4096)) == 4096:
                        pass
                os.truncate(filler, max(0, filler.stat().st_size - size))

            damage = "! The working copy of the project is damaged"
            for size in (0, 8192, 32768, 150000):
                filler.unlink(missing_ok=True)
                self.check(ask("open_project", path=str(project)).startswith("Project opened: "), f"{size}: no open")
                leave(size)
                self.look_at_profiles(f"no profile with {size} bytes", ask, False)
                filler.unlink()
                self.look_at_profiles(f"profile after {size} bytes", ask, True)
                leave(size)
                told, number = "", 0
                while not told.startswith("! ") and number < 100:
                    number += 1
                    told = ask("add_index", line=0, index=0x3000 + number, name=f"{number} " + "n" * 8000,
                               objectType="Variable", dataType=5)
                for tool, arguments in (("get_line", {"line": 0}), ("list_lines", {}), ("list_indices", {"line": 0}),
                                        ("get_settings", {"group": "general"}), ("check_model", {}),
                                        ("set_setting", {"key": "user_defines", "value": "x"}), ("add_line", {"line": 1}),
                                        ("import_file", {"path": str(folder / "bench.eds")}),
                                        ("generate", {"disableCheck": True})):
                    told = ask(tool, **arguments)
                    self.check(told.startswith(damage), f"{tool} with {size} bytes: {told[:200]}")
                before = project.read_bytes()
                told = ask("save_project")
                self.check("ERROR - The working copy" in told and project.read_bytes() == before, f"save: {told}")
            leave(0)
            told = ask("open_project", path=str(project))
            self.check(told.startswith("! Failed to open project: ") and "(is the disk full?)" in told, f"open: {told}")

    def look_at_profiles(self, name, ask, served):
        for tool, arguments in (("get_profile_index", {"index": 0x6040}), ("list_profile_indices", {}),
                                ("import_profile_indices", {"line": 0, "indices": [0x6040]})):
            told = ask(tool, profile="402", **arguments)
            good = ("0x6040" if served else "cannot be loaded") in told
            good = good or (tool == "list_profile_indices" and told.startswith("-32000"))
            self.check(good, f"{name}, {tool}: {told[:200]}")
        self.check(not served or ask("get_profile_index", profile="401", index=0x6000).startswith("{"), f"{name}: 401")

    @contextlib.contextmanager
    def server_at(self, home):
        """A server with this home: a function that calls its tools and returns what these say."""
        with subprocess.Popen(self.command("--mcp"), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              env=self.environment(home), cwd=self.work) as process:
            def ask(tool, **arguments):
                request = {"id": 1, "method": "tools/call", "params": {"name": tool, "arguments": arguments}}
                with contextlib.suppress(BrokenPipeError):
                    process.stdin.write(json.dumps(request).encode() + b"\n")
                    process.stdin.flush()
                reply = json.loads(process.stdout.readline() or '{"error": {"code": "the server", "message": "is gone"}}')
                if "error" in reply:
                    return f"{reply['error']['code']} {reply['error']['message']}"
                return ("! " if reply["result"].get("isError") else "") + reply["result"]["content"][0]["text"]

            yield ask
            with contextlib.suppress(BrokenPipeError):
                process.stdin.close()
            self.check(process.wait(60) == 0, "the server's end")

    # ---- Files that are none ----

    def strange(self):
        """Pipes, devices, folders, sockets and endless files in the place of every file that is read."""
        folder, home = self.folder("strange"), self.folder("strange-home")

        def huge(path):
            with open(path, "wb") as file:
                file.truncate(200 * GIB)

        def bind(path):
            with socket.socket(socket.AF_UNIX) as server:
                server.bind(str(path))

        kinds = {"pipe": os.mkfifo, "device": lambda path: path.symlink_to("/dev/zero"), "folder": os.mkdir,
                 "socket": bind, "endless": huge, "empty": pathlib.Path.touch,
                 "dangling link": lambda path: path.symlink_to("nowhere")}
        for kind, make in kinds.items():
            for name in ("x.ncxp", "x.ncxt", "x.eds", "x.dcf", "x.csv", "x_doc.txt"):
                place = self.folder("strange/it") / name
                try:
                    make(place)
                except OSError:
                    continue  # this file system has no such thing
                if "ncx" in name:
                    before = place.lstat()
                    code, text = self.run_short("-project", place, "-save", home=home)
                    self.check(code in (3, 7) or (kind == "empty" and code == 0), f"project {name}, {kind}: {code} {text}")
                    after = place.lstat()
                    self.check(kind == "empty" or (before.st_mode, before.st_size) == (after.st_mode, after.st_size),
                               f"project {name}, {kind}: it was replaced")
                for option in ("-import", "-dbmod"):
                    project = self.project(self.folder("strange/project"), 3)
                    code, text = self.run_short("-project", project, option, place, home=home)
                    self.check(code in (0, 5), f"{option} {name}, {kind}: {code} {text}")
        for name in ("-", "/", ".", "", "-save", "/dev/stdin", "/dev/null"):
            code, text = self.run_short("-project", name, home=home)
            self.check(code == 3, f"project {name!r}: {code} {text}")
        shutil.rmtree(folder)
        self.check(not self.left_over(home), "strange: working copies are left")

    def run_short(self, *arguments, home):
        """A run that takes neither long nor much memory."""
        try:
            result = subprocess.run(self.command(*arguments), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                    stderr=subprocess.STDOUT, timeout=120, cwd=self.work, env=self.environment(home),
                                    preexec_fn=limit_memory)
        except subprocess.TimeoutExpired:
            return None, "has no end"
        return result.returncode, result.stdout.decode(errors="replace")

    # ---- Files that change under the program ----

    def changed(self):
        """The project's file or folder is deleted, replaced or linked while a server has it open; two servers have it."""
        edit = ("set_setting", {"key": "co_timer_interval", "value": "2345"})

        def saves(name, change, project_exists=True, form="ncxp"):
            home, folder = self.folder("changed-home"), self.folder("changed")
            project = self.project(folder, 5, form)
            server = self.start_server(home)
            self.check("Project opened" in self.call(server, "open_project", path=str(project)), f"{name}: no open")
            self.call(server, edit[0], **edit[1])
            change(project)
            said = self.call(server, "save_project")
            self.check(("ERROR" not in said) == project_exists, f"{name}: {said}")
            self.check(self.end_server(server) == 0, f"{name}: the server's end")
            if project_exists:
                self.check(self.has_edit(project), f"{name}: the edit is lost")
            self.check(not self.left_over(home), f"{name}: working copies are left")
            return project

        for form in ("ncxp", "ncxt"):
            saves(f"{form} deleted", pathlib.Path.unlink, form=form)
            saves(f"{form} cut", lambda project: project.write_bytes(b"SQLite"), form=form)
            saves(f"folder of {form} deleted", lambda project: shutil.rmtree(project.parent), False, form)
            # A database takes the folder for its backup; a text gives up.
            saves(f"folder in the place of {form}", lambda project: (project.unlink(), project.mkdir()), form == "ncxp",
                  form)
            saves(f"folder in the place of the backup of {form}",
                  lambda project: project.with_name(project.name + ".bak").mkdir(), form=form)
            real = self.folder("real") / f"real.{form}"
            link = saves(f"linked {form}", lambda project: (project.rename(real), project.symlink_to(real)), form=form)
            self.check(link.is_symlink() and self.has_edit(real), f"linked {form}: the link is lost")
            self.two_servers(form)

    def two_servers(self, form):
        """The later save of two holds, and what the earlier one saved is the backup."""
        home, folder = self.folder("changed-home"), self.folder("changed")
        project = self.project(folder, 5, form)
        servers = [self.start_server(home) for _ in range(2)]
        for number, server in enumerate(servers):
            self.call(server, "open_project", path=str(project))
            self.call(server, "set_setting", key="co_timer_interval", value=str(2344 + number))
        for server in servers:
            self.check("ERROR" not in self.call(server, "save_project"), f"two servers, {form}: no save")
        self.check(self.has_edit(project), f"two servers, {form}: the later edit is lost")
        if form == "ncxp":
            self.check("'2344'" in (self.content(project.with_name("device.ncxp.bak")) or ""), "two servers: no backup")
        self.check([self.end_server(server) for server in servers] == [0, 0], f"two servers, {form}: their end")

    def has_edit(self, project):
        return re.search(r"co_timer_interval(=|',')2345\b", self.content(project) or "") is not None

    def start_server(self, home):
        return subprocess.Popen(self.command("--mcp"), stdin=subprocess.PIPE, stdout=subprocess.PIPE, cwd=self.work,
                                env=self.environment(home))

    @staticmethod
    def call(server, tool, **arguments):
        request = {"id": 1, "method": "tools/call", "params": {"name": tool, "arguments": arguments}}
        server.stdin.write(json.dumps(request).encode() + b"\n")
        server.stdin.flush()
        return server.stdout.readline().decode()

    @staticmethod
    def end_server(server):
        server.stdin.close()
        return server.wait(60)

    # ---- Streams and requests ----

    def streams(self):
        """Standard streams that are closed, and requests that are none."""
        home = self.folder("streams-home")
        folder = self.folder("streams")
        project = self.project(folder, 5)
        fresh = project.read_bytes()
        self.run("-project", project, "-save", home=home)
        whole, content = set(self.files(folder)), self.content(project)
        for how in ("<&-", ">&-", "2>&-", "<&- >&-", "<&- >&- 2>&-", ">/dev/full", "| head -c 1"):
            project.write_bytes(fresh)
            code = subprocess.run(["bash", "-c", f'"$0" -project "$1" -save {how}', self.program, project], timeout=60,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL,
                                  env=self.environment(home), cwd=self.work).returncode
            self.check(code == 0 and set(self.files(folder)) == whole and self.content(project) == content,
                       f"batch {how}: {code}")
            code = subprocess.run(["bash", "-c", f'"$0" --mcp {how}', self.program], timeout=60,
                                  input=b'{"id":1,"method":"tools/list"}\n' * 9, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, env=self.environment(home), cwd=self.work).returncode
            self.check(code == 0, f"server {how}: {code}")
        self.requests(home)

    def requests(self, home):
        def call(arguments):
            return b'{"id":1,"method":"tools/call","params":{"name":"get_index","arguments":%s}}' % arguments

        size = 1_000_000 if self.options.short else 100_000_000
        lines = {
            "NUL": b'{"id":1,\0"method":"x"}', "NUL in a word": b'{"id":1,"method":"x\0"}', "bad UTF-8": b'{"id":1,"\xff":"\xfe"}',
            "half a surrogate": call(b'{"line":"\\ud800","index":"\\u0000"}'),
            "no object": b'[{"id":1,"method":"initialize"}]', "half a request": b'{"id":1,"method":"init',
            "deep": b'{"id":1,"method":"x","params":' + b"[" * size + b"]" * size + b"}",
            "deep arguments": call(b'{"line":' * 900 + b"0" + b"}" * 900),
            "long text": call(b'{"line":"%s"}' % (b"a" * size)), "long garbage": b"x" * (2 * size),
            **{f"number {n}": b'{"id":%s}\n%s' % (n, call(b'{"line":%s,"index":%s}' % (n, n)))
               for n in (b"1e400", b"-1e400", b"1e308", b"9" * 400, b"-0", b"4294967296", b"18446744073709551616", b"0.5")},
        }
        for name, line in lines.items():
            result = subprocess.run(self.command("--mcp"), input=line + b'\n{"id":7,"method":"resources/list"}\n',
                                    stdout=subprocess.PIPE, timeout=120, env=self.environment(home), cwd=self.work,
                                    preexec_fn=limit_memory)
            last = result.stdout.splitlines()[-1] if result.stdout else b"null"
            self.check(result.returncode == 0 and b'"id":7' in last, f"request {name}: {result.returncode} {last[:300]}")
            half = subprocess.run(self.command("--mcp"), input=line, stdout=subprocess.DEVNULL, timeout=120,
                                  env=self.environment(home), cwd=self.work)
            self.check(half.returncode == 0, f"the input ends in a line, {name}: {half.returncode}")
        if not self.options.short:
            endless = subprocess.run(["bash", "-c", 'head -c 20G /dev/zero | "$0" --mcp', self.program], timeout=600,
                                     stdout=subprocess.PIPE, env=self.environment(home), preexec_fn=limit_memory)
            self.check(endless.returncode == 0 and not endless.stdout, f"a line of 20 GB: {endless.returncode}")

    # ---- Signals ----

    def signals(self):
        """SIGTERM, SIGINT and SIGHUP at random moments of a run: a whole project and no working copy."""
        folder, home = self.folder("signals"), self.folder("signals-home")
        project = self.project(folder, 200)
        arguments = ["-project", project, "-import", folder / "bench.eds", "-save"]
        before, fresh = self.content(project), project.read_bytes()
        seconds = self.duration(project, arguments, home)
        after = self.content(project)
        ended = {}
        for number in range(self.options.kills // 3):
            project.write_bytes(fresh)
            process = subprocess.Popen(self.command(*arguments), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       cwd=self.work, env=self.environment(home), preexec_fn=heed_signals)
            with contextlib.suppress(subprocess.TimeoutExpired):
                process.wait(self.random.uniform(0, seconds))
            process.send_signal((signal.SIGTERM, signal.SIGINT, signal.SIGHUP)[number % 3])
            code = process.wait(60)
            ended[code] = ended.get(code, 0) + 1
            self.check(code in (0, -signal.SIGTERM, -signal.SIGINT, -signal.SIGHUP), f"signals: {code}")
            self.check(self.content(project) in (before, after), "signals: the project is not whole")
            self.check(not self.left_over(home), "signals: a working copy is left")
        server = self.start_server(home)
        self.call(server, "open_project", path=str(project))
        self.check(self.left_over(home), "the server has no working copy")
        server.send_signal(signal.SIGTERM)
        self.check(server.wait(60) == -signal.SIGTERM and not self.left_over(home), "SIGTERM leaves a working copy")
        print(f"  {self.options.kills // 3} signals: {ended}")

    # ---- System calls ----

    def traced_environment(self, home):
        """A sanitizer's search for leaks needs to trace the program itself, and fails where somebody else does."""
        return {**self.environment(home), "ASAN_OPTIONS": "detect_leaks=0"}

    def calls(self):
        """A run ends at, or fails in, each of the system calls that it changes files with."""
        if not shutil.which("strace") or subprocess.run(["strace", "-o", "/dev/null", "true"],
                                                        stderr=subprocess.DEVNULL).returncode != 0:
            raise self.skip("needs strace")
        folder, home = self.folder("calls"), self.folder("calls-home")
        project = self.project(folder, 5)
        arguments = ["-project", project, "-import", folder / "bench.eds", "-save"]
        before, fresh = self.content(project), project.read_bytes()
        self.run(*arguments, home=home)
        after, last = self.content(project), project.read_bytes()
        names = "link,linkat,rename,unlink,fdatasync,fsync,chmod,fchmod,ftruncate"
        all_names = f"{names},write,pwrite64"
        told = {}
        for threads in ([], ["-f"]):
            for effect, traced in (("signal=KILL", names), ("signal=KILL", all_names), ("error=EIO", all_names),
                                   ("error=ENOSPC", all_names)):
                count = self.count_calls(threads, traced, arguments, home, project, fresh)
                limit = 12 if threads else count
                step = max(1, limit // (4 if self.options.short else 120))
                for number in range(1, limit + 1, step):
                    project.write_bytes(fresh)
                    inject = ["strace", *threads, "-qq", "-o", "/dev/null", "-e", "trace=none", "-e",
                              f"inject={traced}:{effect}:when={number}"]
                    result = subprocess.run([*inject, *self.command(*arguments)], stdin=subprocess.DEVNULL, timeout=300,
                                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, cwd=self.work,
                                            env=self.traced_environment(home))
                    self.look_after_call(f"{effect} in call {number} {threads}", project, result, (before, after),
                                         "error" in effect)
                    told[effect] = told.get(effect, 0) + 1
        self.check(len(last) > len(fresh), "calls: nothing was imported")
        print(f"  {told}")

    def count_calls(self, threads, names, arguments, home, project, fresh):
        project.write_bytes(fresh)
        log = self.work / "calls.txt"
        subprocess.run(["strace", *threads, "-qq", "-o", log, "-e", f"trace={names}", *self.command(*arguments)],
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, cwd=self.work, check=True,
                       env=self.traced_environment(home))
        return len(log.read_text().splitlines())

    def look_after_call(self, name, project, result, states, failed):
        text = result.stdout.decode(errors="replace")
        state = self.content(project) if project.exists() else None
        if state is None and not project.exists():
            backup = project.with_name(project.name + ".bak")
            state = self.content(backup) if backup.exists() else None
        self.check(state in states, f"{name}: the project is not whole: {result.returncode} {text[-2000:]}")
        if failed:
            self.check(result.returncode >= 0, f"{name}: ended by signal {-result.returncode}")
            complains = "ERROR" in text or "Error - " in text or "ABORT" in text
            self.check(state == states[1] or complains, f"{name}: not saved without a word: {text[-2000:]}")
