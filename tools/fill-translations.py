#!/usr/bin/env python3
# Writes translations from a table into the .ts files: fill-translations.py TABLE.py
# TABLE.py defines T = {(context, source): (french, chinese)}. Entries the
# table does not know stay unfinished, for the translation check to report.
import subprocess
import sys
import xml.etree.ElementTree as ET
from pathlib import Path

table = {}
exec(Path(sys.argv[1]).read_text(encoding="utf-8"), table)
T = table["T"]
root = Path(__file__).resolve().parent.parent / "resources" / "translations"
for index, name in ((0, "oculix_fr.ts"), (1, "oculix_zh_CN.ts")):
    path = root / name
    tree = ET.parse(path)
    missing = 0
    for context in tree.getroot().iter("context"):
        cname = context.find("name").text
        for message in context.iter("message"):
            element = message.find("source")
            # lupdate writes control characters as <byte value="xd"/>.
            source = (element.text or "") + "".join(
                chr(int(b.get("value").lstrip("x"), 16)) + (b.tail or "") for b in element.findall("byte"))
            translation = message.find("translation")
            if (cname, source) in T:
                text = T[(cname, source)][index]
                for child in list(translation):
                    translation.remove(child)
                if message.get("numerus") == "yes":
                    # One form per plural form of the language: a list.
                    translation.text = None
                    for form in text if isinstance(text, list) else [text]:
                        ET.SubElement(translation, "numerusform").text = form
                    translation.attrib.pop("type", None)
                    continue
                parts = text.split("\r")
                translation.text = parts[0]
                for part in parts[1:]:
                    ET.SubElement(translation, "byte", value="xd").tail = part
                translation.attrib.pop("type", None)
            elif translation.get("type") == "unfinished":
                missing += 1
                print(f"{name}: no translation for {cname}: {source!r}")
    with open(path, "wb") as out:
        out.write(b'<?xml version="1.0" encoding="utf-8"?>\n<!DOCTYPE TS>\n')
        tree.write(out, encoding="utf-8", xml_declaration=False)
        out.write(b"\n")
    print(f"{name}: {missing} left")
# ElementTree writes the files in its own form (quotes unescaped); lupdate
# writes them back in the one the repository keeps, so a diff shows only the
# new translations.
subprocess.run([str(root.parent.parent / "tools" / "update-translations.sh")], check=True)
