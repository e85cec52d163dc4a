#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets (tests/fuzz/corpus/<target>/)
from the sample packages and the inputs the unit tests use. Run it again
after changing packages/; scripts/fuzz adds what the fuzzers find."""
import hashlib
import pathlib
import re

root = pathlib.Path(__file__).resolve().parents[2]
corpus = root / "tests/fuzz/corpus"
packages = root / "packages/filter"
descriptions = sorted((packages / "gl").glob("*.xml"))
package_files = sorted(packages.glob("*/filter.xml"))


def write(target, data):
    if isinstance(data, str):
        data = data.encode()
    folder = corpus / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / ("seed-" + hashlib.sha1(data).hexdigest()[:12])).write_bytes(data)


def sources(path):
    text = path.read_text()
    return re.findall(r"<(?:vertex|fragment)>(.*?)</(?:vertex|fragment)>", text, re.S)


packed = ["mee5x1819043176x111x", "hfe2f26990h", "hfe24f65c66d67b68h69i70l", "mee4x-1x", "hfe4f0d",
          "mee6x1819043176x", "mee3", "mee", "meex", "mee4x1819043176x999x", "hfe4f1819043181l5c",
          "hfe2f26990h5c", "mee4x1x2x3x", "mee-5x1x", "mee16777216x1x", "mee16777217x",
          "mee24x1899457868x846743085x1949923154x879774559x1983406938x862473761x"]
shaders = [s for d in descriptions for s in sources(d)]
for text in packed + [s for s in shaders if s[:3] in ("mee", "hfe")]:
    write("packed_string", text)

for text in packed + shaders + ["ios", "ios123", "aes", "aes00", "4142zz", "0g"]:
    # Byte 0: the count handed to the hex decoder (minus 8).
    write("shader_decipher", bytes([40]) + text.encode())

for path in descriptions:
    write("gl_description", path.read_bytes())
for path in package_files:
    write("gl_description", path.read_bytes())

params = [(0, "0.18"), (0, "-1e39"), (0, "nan"), (1, "1.08|0.98|0.9|1"), (2, "|".join(["1"] * 16)),
          (2, "2||3"), (3, "256,128"), (3, ",".join(str(i) for i in range(300))), (3, "99999999999,-5,,x"),
          (4, "grain.png"), (5, "3"), (6, "1|2")]
for kind, text in params:
    write("cpu_param", bytes([kind]) + text.encode())

for seed in range(8):
    write("frames_filters", hashlib.sha256(bytes([seed])).digest() * (seed + 1))

# Packages: the root file, then every description and every other package
# under its own path, and a short image for the grain.
others = "".join("\n#@ filter/gl/%s\n%s" % (d.name, d.read_text()) for d in descriptions)
includes = "".join("\n#@ filter/%s/filter.xml\n%s" % (p.parent.name, p.read_text()) for p in package_files)
grain = "\n#@ filter/fz/grain.png\n\x03\x03" + "\x10\x80\xf0\xff" * 4
for path in package_files:
    write("package", path.read_text() + others + includes + grain)
