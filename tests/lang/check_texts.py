#!/usr/bin/env python3
"""Every text number that the sources use exists in every language. Every label of a field and every box has an access
key, which nothing else that is seen at the same time has.
The manual's links lead somewhere, and it explains every control of the settings under the caption that it has."""

import html
import pathlib
import re
import sys
from xml.etree import ElementTree

root = pathlib.Path(__file__).resolve().parents[2]
faults = []


def read_texts():
    """{language: {(section, number): (text, tooltip)}}"""
    texts, languages = {}, set()
    raw = (root / "resources/lang/Korvalin.lng").read_bytes().decode("utf-8")
    if "\n" in raw.replace("\r\n", ""):
        faults.append("a line does not end with CR LF")
    for line in raw.split("\r\n")[1:]:
        if not line:
            continue
        fields = line.split("\t")
        if not 4 <= len(fields) <= 5:
            faults.append(f"{len(fields)} fields: {line}")
            continue
        language, section, number = fields[:3]
        key = (language, section, number)
        if key in texts:
            faults.append(f"double entry {key}")
        texts[key] = [field.removeprefix('"').removesuffix('"') for field in fields[3:]]
        if language != "LNG":
            languages.add(language)
    return texts, sorted(languages)


def uses():
    """Every (section, number) in the sources, with the file that uses it."""
    pages = {"GraphPage": "frmStatistik"}  # pages with the texts of the window that they are a part of
    helper_sections = {"Errors.cpp": "modGlobal", "ConnectionState.cpp": "modConnInfo", "UpdateCheck.cpp": "modInternet",
                       "UpdateDownload.cpp": "modInternet", "frmStatistik.cpp": "frmStatistik", "UseTexts.cpp": "modStats"}
    for path in sorted((root / "src").rglob("*")):
        if path.suffix not in (".cpp", ".h", ".ui"):
            continue
        source = path.read_text()
        if path.suffix == ".ui":
            window = re.search(r"<class>(\w+)</class>", source)[1]
            window = pages.get(window, window)
            for number in re.findall(r"#LngNo:(\d+)", source):
                yield f"{window}Obj", number, path
            continue
        for section, number in re.findall(r'Lng\("(\w+)",\s*(\d+)', source):
            yield section, number, path
        for number in re.findall(r"\bStatText\((\d+)\)", source):
            yield "frmStatistik", number, path
        for number in re.findall(r"(?<!\.)\b[Tt]ext\((\d+)\)", source):
            yield helper_sections.get(path.name, "modAllgemein"), number, path
        for pieces in re.findall(r"ShowPieces\([^{;]*\{([^}]*)\}", source):
            for number in re.findall(r"(?<![\w.])\d+(?![\w.])", pieces):
                yield "modAllgemein", number, path
        for number in re.findall(r"\{Internet\w+, (\d+),", source):
            yield "modConnInfo", number, path


def access_scopes():
    """{what is seen at the same time: {(section, number): whether it must have an access key}}"""
    dialog = (root / "src/settingsdlg/frmEinstellungen.cpp").read_text()
    pages = {frame: page for page, frames in re.findall(r'\{"(tv\w+)",[^{]*\{([^}]*)\}', dialog)
             for frame in re.findall(r"ui\.(\w+)", frames)} | {"pageSums": "sums", "GraphPage": "graph"}
    scopes = {"message": {("frmPopupMsg", number): True for number in "123"}}
    for path in sorted((root / "src").rglob("*.ui")):
        form = ElementTree.parse(path).getroot()
        window = "frmStatistik" if path.stem == "GraphPage" else path.stem
        shared = scopes.setdefault(window, {})
        collect_controls(form, window + "Obj", window, pages, scopes)
        if window == "frmStatistik":
            shared |= {("frmStatistik", "25"): True, ("frmStatistik", "26"): True, ("frmMainObj", "7"): True}  # its tabs
    editor = (root / "src/settingsdlg/ChartEditor.cpp").read_text()
    for frame, number in re.findall(r"ui_\.(\w+)\.SetUp\([^{]*\{[^}]*?(\d+)\}", editor):
        scopes[f"frmEinstellungen {pages[frame]}"]["frmEinstellungenObj", number] = True
    return {name: members | scopes.get(name.split()[0] if " menu" not in name else "", {})
            for name, members in scopes.items()}


def collect_controls(element, section, scope, pages, scopes):
    if element.tag == "action" or element.get("class") == "QMenu":
        scope = section.removesuffix("Obj") + " menu"
    elif element.get("name") in pages:
        scope = f"{section.removesuffix('Obj')} {pages[element.get('name')]}"
    tag = element.find("property[@name='Tag']/string")
    if tag is not None and element.get("class") != "QGroupBox":
        kind = element.get("class")
        must = kind in ("QCheckBox", "QRadioButton") or \
            kind == "QLabel" and element.find("property[@name='buddy']") is not None
        scopes.setdefault(scope, {})[section, tag.text.removeprefix("#LngNo:")] = must
    for child in element:
        collect_controls(child, section, scope, pages, scopes)


def check_access_keys(language, scope, members):
    owners = {}
    for member, must in members.items():
        text = texts[(language, *member)][0]
        key = re.search(r"&(\w)", text)
        if not key:
            if must:
                faults.append(f"no access key in {language} {scope}: {text}")
        elif owners.setdefault(key[1].lower(), member) != member:
            faults.append(f"access key {key[0]} twice in {language} {scope}: {member} and {owners[key[1].lower()]}")


def check_manual(texts):
    """Returns the number of its links."""
    folder, links = root / "docs/manual", 0
    pages = {page.relative_to(folder): page.read_text() for page in folder.rglob("*.html")}
    anchors = {page: re.findall(r'\bid="([^"]+)"', source) for page, source in pages.items()}
    for page, source in pages.items():
        if sorted(anchors[page]) != sorted(set(anchors.get(pathlib.Path("en") / page.name, []))):
            faults.append(f"{page} has other anchors than the English page, or one twice")
        for link in re.findall(r'(?:href|src)="([^"]+)"', source):
            name, _, anchor = link.partition("#")
            target = (folder / page.parent / (name or page.name)).resolve()
            links += 1
            if not target.is_file() or anchor and anchor not in anchors[target.relative_to(folder)]:
                faults.append(f"{page} links to {link}, which is not there")
    for language, code in (("de", "GER"), ("en", "ENG")):
        if {page.name for page in pages if page.parts[0] == language} != {page.name for page in pages}:
            faults.append(f"a page is missing in {language}")
        check_controls(texts, code, pages[pathlib.Path(language) / "settings.html"])
    return links


def check_controls(texts, code, page):
    source = (root / "src/settingsdlg/frmEinstellungen.ui").read_text()
    captions = dict(re.findall(r'name="(\w+)"(?:(?!<widget)[\s\S])*?#LngNo:(\d+)', source))
    buddies = {control: captions[label] for label, control in
               re.findall(r'name="(lbl\w+)"(?:(?!<widget)[\s\S])*?buddy"><cstring>(\w+)<', source)}
    for control in re.findall(r'<widget class="[^"]+" name="((?:box|opt|cbo|txt|cmd)\w+)"', source):
        if f'id="{control}"' not in page:
            faults.append(f"the manual does not explain {control} in {code}")
        number = buddies.get(control, captions.get(control))
        said = re.search(rf'<dt id="{control}">([^<]*)<', page)
        if number and said and html.unescape(said[1]) != \
                texts[code, "frmEinstellungenObj", number][0].replace("&", "").rstrip(":"):
            faults.append(f"the manual calls {control} “{said[1]}” in {code}")


texts, languages = read_texts()
links = check_manual(texts)
found = list(uses())
if len(found) < 60 or len(languages) < 2:
    faults.append(f"only {len(found)} uses in {languages}: this check no longer sees the sources")
for section, number, path in found:
    for language in languages:
        if (language, section, number) not in texts:
            faults.append(f"{path.relative_to(root)} uses {section} {number}, missing in {language}")

every = {key[1:] for key in texts if key[0] != "LNG"}
for language in languages:
    for section, number in sorted(every):
        if (language, section, number) not in texts:
            faults.append(f"{section} {number} is missing in {language}")
    for scope, members in access_scopes().items():
        check_access_keys(language, scope, members)

print("\n".join(faults) or f"{len(found)} uses, {len(every)} texts in {', '.join(languages)}, {links} links")
sys.exit(1 if faults else 0)
