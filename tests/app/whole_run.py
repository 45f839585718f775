"""What fault-sweep, kill-test and soak know of a run: its drawings, its state, its log and its archive.

Nothing here uses the programs under test: what a run says is read from its files with readers of this file's
own, so that a fault in theirs cannot hide.
"""
import hashlib
import html
import os
import re
import zipfile
from xml.etree import ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SAMPLES = os.path.join(ROOT, "samples/drawings")
WORDS = ["ToDo", "Done", "FailOpen", "Timeout", "Locked", "Error", "Canceled"]
# A layer of the script's own in the drawing, and a line of the drawing's own in the host's log of it.
SCRIPT = """._-layer _make {mark} _color 3 {mark} _set 0

(princ (strcat "\\n{mark} of " currentfile "\\n"))
{more}._qsave
{last}"""
ENTRY = re.compile(r'Processing file: <span id="([^"]*)">(.*?)</span>', re.S)


def write_script(path, mark, more="", last=""):
    with open(path, "w", encoding="utf-8") as file:
        file.write(SCRIPT.format(mark=mark, more=more, last=last))


def digest(path):
    """Of a drawing's bytes, but for the date of the save that the header holds."""
    try:
        with open(path, "rb") as file:
            data = file.read()
    except FileNotFoundError:
        return "gone"
    data = re.sub(rb"(\$TDU?UPDATE\r?\n *40\r?\n)[^\r\n]*", rb"\1", data)
    data = re.sub(rb"(\$TDU?UPDATE\0\x28\0).{8}", rb"\1", data, flags=re.S)
    return hashlib.sha256(data).hexdigest()


def stem(path):
    return os.path.splitext(os.path.basename(path))[0]


def statuses(home):
    """(path, word) for each drawing of the state, in its order; none when there is no state."""
    path = os.path.join(home, "Ovrix/TarnelRunner.xml")
    if not os.path.exists(path):
        return []
    tree = ElementTree.parse(path)
    return [(file.text, WORDS[int(file.get("Status"))]) for file in tree.getroot().iter("File")]


def log_entries(home):
    """(drawing, link) for each drawing of the run log."""
    path = os.path.join(home, "Ovrix/tnl log.html")
    if not os.path.exists(path):
        return []
    with open(path, encoding="utf-8", errors="replace") as file:
        return [(html.unescape(drawing), html.unescape(link)) for link, drawing in ENTRY.findall(file.read())]


def members(home):
    """The archive's members by name; a member that does not unpack is an exception."""
    path = os.path.join(home, "Ovrix/TNLLog.zip")
    if not os.path.exists(path):
        return {}
    with zipfile.ZipFile(path) as archive:
        return {name: archive.read(name).decode("utf-8", "replace") for name in archive.namelist()}


def log_faults(home, drawings, mark):
    """What is not as it should be in log and archive of a run over these drawings, as texts. Without a mark it
    is not asked what the logs tell of."""
    faults = []
    try:
        archive = members(home)
    except (zipfile.BadZipFile, EOFError, OSError, ValueError) as failure:
        return ["the archive cannot be read: %s" % failure]
    entries = log_entries(home)
    found = [drawing for drawing, _ in entries]
    for drawing in drawings:
        if found.count(drawing) != 1:
            faults.append("%s stands %d times in the run log" % (drawing, found.count(drawing)))
    faults += ["%s is in the run log and not in the run" % drawing for drawing in set(found) - set(drawings)]
    for drawing, link in entries:
        if link not in archive:
            faults.append("%s: no log %s in the archive" % (drawing, link))
            continue
        named = set(re.findall(r"^%s of (.*?)\r?$" % re.escape(mark or ""), archive[link], re.M))
        if mark and named != {stem(drawing)}:
            faults.append("%s: its log tells of %s" % (drawing, sorted(named) or "nothing"))
    linked = {link for _, link in entries}
    faults += ["%s is in the archive and not linked" % name for name in set(archive) - linked]
    return faults


def files_below(folder):
    return {os.path.relpath(os.path.join(place, name), folder)
            for place, _, names in os.walk(folder) for name in names}
