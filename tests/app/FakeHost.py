#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A host that dies, hangs and dawdles on demand, for the tests of the program that watches over hosts.

It takes the commands that a run sends, keeps a state file and tells the events of a run. What it does to a
drawing stands in the drawing's name: die… ends in a segmentation fault, hang… answers nothing any more, slow…
waits for a cancel, full… says that its script cannot be written and waits, bad… cannot be opened, all others
are Done at once. The file "host-starts" beside the state counts the starts; "mute" there makes the host start no
run at all, and "room" that slow… and full… are Done at once.
"""
import html
import json
import os
import re
import select
import signal
import sys
import time

WORDS = ["ToDo", "Done", "FailOpen", "Timeout", "Locked", "Error", "Canceled"]
FOLDER = os.path.join(os.environ["XDG_DATA_HOME"], "Ovrix")
STATE = os.path.join(FOLDER, "TarnelRunner.xml")
# In a host's own folder, "job-1/Ovrix", beside the state of the whole run.
ROOM = os.path.join(re.sub(r"/job-\d+/Ovrix$", "", FOLDER), "room")
queue = []
max_time = 60
state = ""


def load():
    global max_time
    if not os.path.exists(STATE):
        return
    global state
    with open(STATE, encoding="utf-8", newline="") as f:
        state = text = f.read()
    queue[:] = [[html.unescape(path), int(status)]
                for status, path in re.findall(r'<File Status="(\d+)">(.*?)</File>', text, re.S)]
    max_time = int(re.search(r"<MaxTime>(\d+)", text).group(1))


def save():
    files = "".join('<File Status="%d">%s</File>\r\n' % (status, html.escape(path, quote=False))
                    for path, status in queue)
    with open(STATE + ".new", "w", encoding="utf-8", newline="") as f:
        # The script and all else stays.
        f.write(re.sub(r"<Files>.*</Files>", lambda _: "<Files>\r\n%s</Files>" % files, state, flags=re.S) or
                '<TarnelRunner Version="3.0.0" Build="0">\r\n<Options>\r\n<MaxTime>%d</MaxTime>\r\n'
                '<SortIdx>6</SortIdx>\r\n</Options>\r\n<Files>\r\n%s</Files>\r\n</TarnelRunner>\r\n'
                % (max_time, files))
    os.replace(STATE + ".new", STATE)


def tell(event, **values):
    os.write(int(os.environ["TARNEL_REPORT_FD"]), (json.dumps(dict(event=event, **values)) + "\n").encode())


def say(text):
    tell("text", text=text)


def give(entry, word):
    entry[1] = WORDS.index(word)
    save()
    tell("status", entry=queue.index(entry), path=entry[0], status=word)


def run():
    with open(os.path.join(FOLDER, "tnl log.html"), "wb", buffering=0) as log:
        work(lambda text: log.write(text.encode()))


def work(log):
    waiting = [entry for entry in queue if entry[1] == 0]
    has_room = os.path.exists(ROOM)
    log("<html><body>")
    tell("run-started", todo=len(waiting))
    for number, entry in enumerate(waiting, 1):
        name = os.path.basename(entry[0])
        give(entry, "FailOpen")
        tell("file", entry=queue.index(entry), path=entry[0], number=number, of=len(waiting))
        own = os.path.join(FOLDER, "unopened-%d-%d.log" % (os.getpid(), number))
        with open(own, "w") as f:
            f.write(entry[0])
        log(time.strftime("<span>%x %X: Processing file: ") +
            '<span id="%s">%s</span></span><br />\r\n' % (own.replace("/", "_"), entry[0]))
        if name.startswith("bad"):
            say('Cannot open "%s": line 12: not a group code.' % entry[0])
            continue
        give(entry, "Error")
        if name.startswith("die"):
            os.kill(os.getpid(), signal.SIGSEGV)
        if name.startswith("hang"):
            time.sleep(600)
        if name.startswith("full") and not has_room:
            fault = os.path.join(FOLDER, "script1.scr") + ": cannot be written: No space left on device"
            tell("message", text=fault)
        if name.startswith(("slow", "full")) and not has_room:
            tell("prompt", text="Specify first point: ")
            line = sys.stdin.readline() if select.select([sys.stdin], [], [], 60)[0] else "nobody speaks"
            if not line:
                # The front is gone; this host is about to be killed, and must not go on in between.
                time.sleep(600)
            if "TNL_Cancel" in line:
                give(entry, "Canceled")
                break
        give(entry, "Done")
    log("</body></html>")
    tell("run-ended")


def main():
    global max_time
    with open(os.path.join(FOLDER, "host-starts"), "a") as f:
        f.write("x")
    if os.path.exists(os.path.join(FOLDER, "mute")):
        say("Cannot load the module.")
        return
    load()
    line = sys.stdin.readline()
    while line:
        if line == "Maxtime\n":
            max_time = int(sys.stdin.readline())
        elif line == "Failed\n":
            for entry in queue:
                entry[1] = 1 if entry[1] == 1 else 0
        elif line == "All\n":
            for entry in queue:
                entry[1] = 0
        elif line.startswith("(C:Tarnel"):
            queue.clear()
            while not line.endswith("))\n"):
                line = sys.stdin.readline()
                literal = line.rstrip("\n").removesuffix("))")[1:-1]
                path = re.sub(r"\\([0-7]{3}|.)", lambda m: chr(int(m[1], 8)) if len(m[1]) == 3 else m[1], literal)
                queue.append([path, 0])
            save()
            run()
        elif line == "Run\n":
            run()
        elif line.lstrip("\3") == "QUIT\n":
            return
        line = sys.stdin.readline()


main()
