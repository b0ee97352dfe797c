#!/usr/bin/env python3
"""Writes a device description of N objects: ARRAYs and RECORDs of about 8 sub-objects in turn, and six VARs of ten.

usage: make_eds.py N FILE      (N objects hold about 5 N sub-objects)
"""
import sys

TYPES = (5, 6, 7, 4, 3)


def section(out, head, name, data_type, extra=""):
    out.append(f"[{head}]\nParameterName={name}\nObjectType=0x7\nDataType=0x{data_type:04X}\nAccessType=rw\n"
               f"DefaultValue={data_type}\nPDOMapping=1\n{extra}\n")


def main():
    first = 0x2100  # leaves room for the objects of the project that it goes into
    count, path = int(sys.argv[1]), sys.argv[2]
    out = ["[FileInfo]\nFileName=bench.eds\n\n[DeviceInfo]\nVendorName=Bench\nNrOfRXPDO=0\nNrOfTXPDO=0\n\n"]
    for number in range(count):
        index = first + number
        if number % 10 < 6:
            section(out, f"{index:04X}", f"Value {number}", TYPES[number % 5], "LowLimit=0\nHighLimit=100\n")
            continue
        subs = 12
        code = 8 if number % 2 else 9
        out.append(f"[{index:04X}]\nParameterName=Group {number}\nObjectType=0x{code}\nSubNumber={subs}\n\n")
        section(out, f"{index:04X}sub0", "Highest sub-index supported", 5)
        for sub in range(1, subs):
            section(out, f"{index:04X}sub{sub:X}", f"Element {sub} of group {number}", TYPES[number % 5])
    with open(path, "w", encoding="ascii") as file:
        file.write("".join(out))


if __name__ == "__main__":
    main()
