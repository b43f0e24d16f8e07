"""check.py MAP IMAGE ALGORITHM: computes each checksum in the section CHECKSUM anew, and prints its section's addresses."""
import binascii
import functools
import operator
import re
import struct
import sys
import zlib

ALGORITHMS = {
    "crc16": lambda data: binascii.crc_hqx(data, 0xFFFF),
    "crc32": zlib.crc32,
    "sum": sum,
    "xor": lambda data: functools.reduce(operator.xor, data),
}
rows = re.findall(r"^  (\w{6})  (\w{6})  .{5}  (\S+) ", open(sys.argv[1]).read().split("Contents")[0], re.M)
image = open(sys.argv[2], "rb").read()
loaded = [(int(start, 16), int(last, 16) + 1, name) for start, last, name in rows if int(start, 16) >= 0x1000]
base = min(loaded)[0]
for start, end, name in loaded:
    if name == "CHECKSUM":
        for begin, size, kept in struct.iter_unpack("<HHI", image[start - base:end - base]):
            computed = ALGORITHMS[sys.argv[3]](image[begin - base:begin - base + size])
            print(f"{begin:X} {size}: {'right' if computed == kept else f'{kept:X} instead of {computed:X}'}")
