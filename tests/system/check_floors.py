#!/usr/bin/env python3
"""The floors of the house: a folder includes only folders below it, and the core neither a window nor a system header."""

import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2] / "src"

# Below each folder stand those before it; folders of one row do not see each other.
FLOORS = [["base"], ["platform"], ["forms"], ["errors"], ["settings"], ["lang", "inet"], ["traffic", "dialogs"], ["stats"],
          ["display"], ["settingsdlg", "cli"], ["startup"], ["cli"]]
STANDARD = set("""algorithm array atomic cerrno charconv chrono cmath cstddef cstdint cstdio cstdlib cstring ctime deque exception
filesystem fstream span functional initializer_list ios iterator limits map memory numeric optional random set sstream stdexcept
string string_view system_error thread tuple type_traits unordered_map unordered_set utility variant vector
fmt/format.h""".split())


def gui_sources():
    """The files that belong to the windows, and the headers beside them."""
    listed = re.findall(r"^\s+([\w/]+\.cpp)\)?$", (SOURCE / "gui.cmake").read_text(), re.M)
    names = {pathlib.Path(name).with_suffix("") for name in listed} | {pathlib.Path("startup/main")}
    return names


def level(folder):
    return max(i for i, row in enumerate(FLOORS) if folder in row)


faults, checked = [], 0
gui = gui_sources()
for path in sorted(SOURCE.rglob("*")):
    if path.suffix not in (".cpp", ".h"):
        continue
    name = path.relative_to(SOURCE)
    folder, is_gui = name.parts[0], name.with_suffix("") in gui
    back_end = folder == "platform" and len(name.parts) > 2
    checked += 1
    for kind, header in re.findall(r'^#include ([<"])([^>"]+)[>"]', path.read_text(), re.M):
        if kind == '"':
            other = header.split("/")[0]
            if "/" not in header or back_end:
                continue
            if level(other) > level(folder) or (other == "forms" and not is_gui and folder != "forms"):
                faults.append(f"{name} includes {header}, which stands above it")
            if not is_gui and pathlib.Path(header).with_suffix("") in gui and folder != "forms":
                faults.append(f"{name} is core and includes the window {header}")
        elif not (is_gui or back_end or folder in ("forms", "cli") or header in STANDARD):
            faults.append(f"{name} is core and includes <{header}>")

if checked < 60:
    faults.append(f"only {checked} files: this check no longer sees the sources")
print("\n".join(faults) or f"{checked} files keep to their floors")
sys.exit(1 if faults else 0)
