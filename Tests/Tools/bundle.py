"""`brindle bundle`: a bundle by its path or its identifier, as text and as JSON."""

import os
import sys
import tempfile

sys.dont_write_bytecode = True

from support.checks import answer, check, equal, explains, finish, parsed, refuses

OWN = "org.brindle.Brindle"


def write(path, text=""):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


with tempfile.TemporaryDirectory() as folder:
    folder = os.path.realpath(folder)
    app = folder + "/Mail.app"
    write(app + "/Contents/Info.plist",
          "<plist><dict><key>CFBundleIdentifier</key><string>org.example.Mail</string>"
          "<key>CFBundleName</key><string>Mail</string>"
          "<key>CFBundleVersion</key><string>7</string></dict></plist>")
    write(app + "/Contents/Linux/Mail")
    write(app + "/Contents/Resources/de.lproj/InfoPlist.strings", "CFBundleName = Post;")
    write(app + "/Contents/Resources/en.lproj/Localizable.strings")

    contents = app + "/Contents"
    equal(answer("bundle", app, LC_ALL="de_DE.UTF-8", XDG_DATA_HOME=folder + "/data"),
          f"path        {app}\nfound       path\nsearched    {app}\n"
          "identifier  org.example.Mail\nname        Post\nversion     7\nloaded      no\n"
          f"executable  {contents}/Linux/Mail\nresources   {contents}/Resources\n"
          f"frameworks  {contents}/Frameworks\nplug-ins    {contents}/PlugIns\n"
          f"support     {folder}/data/Post\nlanguages   de\n            en\npreferred   de\n",
          "a bundle as text")

    row = parsed("bundle", app + "/", "--json")
    equal(row.get("path"), app, "the path")
    equal(row.get("name"), "Mail", "the name without a language")
    equal(row.get("languages"), ["de", "en"], "the languages")
    equal(row.get("preferred"), ["en"], "the preferred languages")

    os.mkdir(folder + "/empty")
    row = parsed("bundle", folder + "/empty", "--json")
    equal([row.get(key) for key in ("identifier", "name", "version", "executable", "support")],
          [None] * 5, "an empty folder")

    write(folder + "/file")
    for missing in (folder + "/file", folder + "/gone"):
        equal(answer("bundle", missing, status=1),
              f"there is no bundle {missing}\nsearched    {missing}\n", "no bundle")

row = parsed("bundle", OWN, "--json")
equal(row.get("identifier"), OWN, "the library's own identifier")
equal(row.get("name"), "Brindle", "the library's own name")
equal((row.get("found"), row.get("searched")), ("loaded", ["loaded code"]), "where it was found")
check((row.get("path") or "").endswith("/Brindle.framework"), "the library's own path")

row = parsed("bundle", "org.example.None", "--json", status=1)
equal((row.get("path"), row.get("found")), (None, None), "an unknown identifier")
equal(len(row.get("searched", [])), 3, "where an unknown identifier was searched")

explains("bundle", "--help", saying="usage: brindle bundle")
refuses("bundle", saying="one path or one identifier is wanted")
refuses("bundle", "a", "b", saying="one path or one identifier is wanted")
refuses("bundle", "", saying="an empty word")
refuses("bundle", "a", "--all", saying="unknown option --all")

finish()
