"""`brindle paths`: the user's folders, and paths taken apart."""

import os
import pwd
import sys
import tempfile

sys.dont_write_bytecode = True

from support.checks import answer, equal, explains, finish, parsed, refuses

RECORD = pwd.getpwuid(os.getuid()).pw_dir
CLEAN = {"HOME": "/home/ann", "TMPDIR": "", "XDG_DATA_HOME": "", "XDG_CACHE_HOME": "",
         "XDG_CONFIG_HOME": "", "XDG_DATA_DIRS": ""}

# --- Folders ---

folders = parsed("paths", "--json", **CLEAN)
equal(folders["home"], "/home/ann", "the home of the environment")
equal(folders["home-record"], RECORD, "the home of the user database")
equal(folders["temporary"], "/tmp", "the temporary folder")
equal(folders["support"], "/home/ann/.local/share", "application support")
equal(folders["support-local"], "/usr/local/share", "application support for all")
equal(folders["support-system"], "/usr/share", "application support of the system")
equal(folders["caches"], "/home/ann/.cache", "caches")
equal(folders["documents"], "/home/ann/Documents", "documents")

moved = parsed("paths", "--json", **dict(CLEAN, XDG_DATA_HOME="/data", XDG_CACHE_HOME="relative"))
equal(moved["support"], "/data", "a folder that was moved")
equal(moved["caches"], "/home/ann/.cache", "a relative folder is ignored")

lines = answer("paths", **CLEAN).splitlines()
equal(lines[1], "home            /home/ann", "folders as text")

with tempfile.TemporaryDirectory() as folder:
    with open(os.path.join(folder, "user-dirs.dirs"), "w") as file:
        file.write('XDG_DESKTOP_DIR="$HOME/Schreibtisch"\n')
    own = parsed("paths", "--json", **dict(CLEAN, XDG_CONFIG_HOME=folder))
    equal(own["desktop"], "/home/ann/Schreibtisch", "a folder of the user's own")

# --- Paths ---

letter = parsed("paths", "~/a/../letter.txt", "--json", **CLEAN)
equal(letter, {"path": "~/a/../letter.txt", "absolute": "/home/ann/letter.txt",
               "resolved": "/home/ann/letter.txt",
               "user-home": os.path.join(RECORD, "a/../letter.txt"), "name": "letter.txt",
               "extension": "txt", "folder": "~/a/.."}, "a path taken apart")
equal([row["name"] for row in parsed("paths", "/", "a/.profile", "--json")], ["/", ".profile"],
      "several paths as JSON")
equal(answer("paths", "/usr/bin/x.y", **CLEAN),
      "path            /usr/bin/x.y\nabsolute        /usr/bin/x.y\n"
      f"resolved        {os.path.realpath('/usr/bin')}/x.y\nuser-home       /usr/bin/x.y\n"
      "name            x.y\nextension       y\nfolder          /usr/bin\n", "a path as text")

with tempfile.TemporaryDirectory() as folder:
    folder = os.path.realpath(folder)
    os.symlink("nowhere", os.path.join(folder, "link"))
    os.mkdir(os.path.join(folder, "real"))
    os.symlink("real", os.path.join(folder, "other"))
    equal(parsed("paths", folder + "/other/x", "--json")["resolved"], folder + "/real/x", "a link")
    equal(parsed("paths", folder + "/link", "--json")["resolved"], folder + "/link",
          "a link to nothing")

# --- Words ---

refuses("paths", "--colour", saying="--colour")
refuses("paths", "", saying="an empty text is no path")
explains("paths", "--help", saying="user database")

finish()
