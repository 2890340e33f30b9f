#!/usr/bin/env python3
"""The floors of the house: a folder includes only folders below it, and the core neither a window nor a system header."""

import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2] / "src"

# Below each folder stand those of the rows before it; folders of one row do not see each other.
FLOORS = [["base"], ["platform"], ["platform/linux", "forms", "errors"], ["platform/qt"], ["settings"], ["lang"], ["data", "dialogs"],
          ["inet"], ["traffic"], ["stats"], ["display"], ["settingsdlg"], ["program"], ["cli", "desktop"]]
LEVELS = {folder: number for number, row in enumerate(FLOORS) for folder in row}
STANDARD = set("""algorithm array atomic cerrno charconv chrono clocale cmath cstddef cstdint cstdio cstdlib cstring ctime cwctype deque exception
filesystem fstream span functional initializer_list ios iterator limits map memory numeric optional random set sstream stdexcept
string string_view system_error thread tuple type_traits unordered_map unordered_set utility variant vector
fmt/format.h""".split())


GUI = {pathlib.Path(name).with_suffix("") for name in
       re.findall(r"^\s+([\w/]+\.cpp)\)?$", (SOURCE / "gui.cmake").read_text(), re.M)} | {pathlib.Path("desktop/main")}


def folder_of(name):
    """The floor's folder: the first that is in the list, from the whole path down."""
    return next(str(parent) for parent in pathlib.PurePath(name).parents if str(parent) in LEVELS)


faults, checked = [], 0
for path in sorted([*SOURCE.rglob("*.cpp"), *SOURCE.rglob("*.h")]):
    name, text = path.relative_to(SOURCE), path.read_text()
    folder, is_gui = folder_of(name), name.with_suffix("") in GUI
    checked += 1
    includes = re.findall(r'^#include ([<"])([^>"]+)[>"]', text, re.M)
    # A window that is asked for by its name is a dependency too.
    includes += [('"', str(form.relative_to(SOURCE))) for asked in re.findall(r'IsFormLoaded\("(\w+)"', text)
                 for form in SOURCE.rglob(f"{asked}.h")]
    for kind, header in includes:
        if kind == '"' and "/" in header:  # the toolkit makes others from a form
            other = folder_of(header)
            if other != folder and LEVELS[other] >= LEVELS[folder]:
                faults.append(f"{name} includes {header}, which does not stand below it")
            if not is_gui and folder != "forms" and (other == "forms" or pathlib.Path(header).with_suffix("") in GUI):
                faults.append(f"{name} is core and includes the window {header}")
        elif kind == "<" and not (is_gui or folder in ("forms", "cli", "platform/linux", "platform/qt") or header in STANDARD):
            faults.append(f"{name} is core and includes <{header}>")
if checked < 60:
    faults.append(f"only {checked} files: this check no longer sees the sources")
print("\n".join(faults) or f"{checked} files keep to their floors")
sys.exit(1 if faults else 0)
