# SPDX-License-Identifier: GPL-3.0-or-later
"""A copy of the tree in which one source at a time is changed, built and tested."""
import ctypes
import fcntl
import hashlib
import os
import resource
import shutil
import signal
import subprocess
import sys
import time

# What runs is a program with a fault in it. It sees no other processes, ends with everything that it has started, and
# finds all files but those of the work folder read-only.
ALONE = r"""
mount --bind "$0" "$0" || exit 125
while read -r _ target _; do
    case "$target" in /proc* | /sys* | /dev* | "$0"*) continue ;; esac
    mount -o remount,bind,ro "$target" 2>/dev/null
done </proc/self/mounts
exec "$@"
"""
PR_SET_PDEATHSIG = 1


class Refused(Exception):
    pass


def quiet(*command, **options):
    return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, errors="replace", **options)


def bound_to_us():
    """For a child before it starts: it ends when this program does, however that ends, and takes no more than it
    should of the machine."""
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_FSIZE, (16 << 30, 16 << 30))
    resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))


class Workshop:
    def __init__(self, root, work, jobs):
        self.root, self.work, self.jobs = root, os.path.realpath(work), jobs
        self.tree, self.build = os.path.join(self.work, "tree"), os.path.join(self.work, "tree", "build", "mutate")
        os.makedirs(os.path.join(self.work, "home"), exist_ok=True)
        self.lock = open(os.path.join(self.work, "lock"), "w")
        try:
            fcntl.flock(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise Refused(self.work + ": another tests/mutate works there")
        shutil.rmtree(os.path.join(self.work, "tmp"), ignore_errors=True)
        os.makedirs(os.path.join(self.work, "tmp"))
        self.hashes = {}
        self.clean = {}
        self.cage = self.find_cage()

    def find_cage(self):
        apart = ["unshare", *([] if os.geteuid() == 0 else ["--user", "--map-root-user"]), "--pid", "--mount", "--fork",
                 "--kill-child", "--mount-proc", "sh", "-c", ALONE, self.work]
        tried = quiet(*apart, "true")
        if tried.returncode != 0:
            raise Refused("programs with a fault in them need a place of their own, and unshare gives none: "
                          + tried.stdout.strip())
        return apart

    def copy_tree(self):
        """Makes the copy what the tree is; files that are the same keep their time. Gives each file's digest."""
        listed = quiet("git", "-C", self.root, "ls-files", "-z", "--cached", "--others", "--exclude-standard")
        if listed.returncode != 0:
            raise Refused(listed.stdout.strip())
        digests = {}
        for name in sorted(set(listed.stdout.split("\0")) - {""}):
            source, target = os.path.join(self.root, name), os.path.join(self.tree, name)
            if not os.path.isfile(source):
                continue
            content = open(source, "rb").read()
            digests[name] = hashlib.sha256(content).hexdigest()
            if not os.path.exists(target) or open(target, "rb").read() != content:
                os.makedirs(os.path.dirname(target), exist_ok=True)
                with open(target, "wb") as file:
                    file.write(content)
            shutil.copymode(source, target)
        for folder, below, files in os.walk(self.tree):
            if folder == self.tree and "build" in below:
                below.remove("build")
            for file in files:
                path = os.path.join(folder, file)
                if os.path.relpath(path, self.tree) not in digests:
                    os.remove(path)
        return digests

    def configure(self):
        flags = " ".join(["-O1", os.environ.get("CXXFLAGS", "")]).strip()
        options = ["-DCMAKE_BUILD_TYPE=", "-DCMAKE_CXX_FLAGS=" + flags]
        if shutil.which("ccache"):
            options.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        if shutil.which("ld.lld"):
            options += ["-DCMAKE_%s_LINKER_FLAGS=-fuse-ld=lld" % kind for kind in ("EXE", "SHARED", "MODULE")]
        done = quiet("cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", *options)
        if done.returncode != 0:
            raise Refused("cmake failed:\n" + done.stdout)

    def write(self, name, text):
        with open(os.path.join(self.tree, name), "w", encoding="utf-8", newline="") as file:
            file.write(text)

    def make(self, label):
        """Builds what stands in the folder of tests of that name. Gives the output of a build that failed."""
        done = quiet("ninja", "-C", self.build, "-j%d" % self.jobs, "tests/%s/all" % label)
        return None if done.returncode == 0 else done.stdout

    def objects(self):
        for folder, _, files in os.walk(self.build):
            for file in files:
                if file.endswith(".o"):
                    path = os.path.join(folder, file)
                    stamp = os.stat(path).st_mtime_ns
                    if self.hashes.get(path, (0,))[0] != stamp:
                        self.hashes[path] = (stamp, self.digest_of_object(path))
        return {path: digest for path, (_, digest) in self.hashes.items()}

    def digest_of_object(self, path):
        """Of what a source compiled to, wherever in its line that stood."""
        bare = os.path.join(self.work, "bare.o")
        subprocess.run(["objcopy", "--strip-debug", path, bare], check=True)
        with open(bare, "rb") as file:
            return hashlib.sha256(file.read()).digest()

    def keep_objects(self):
        """Remembers what the unchanged sources compile to."""
        self.clean = self.objects()

    def differs(self):
        """Whether any source compiles to something else than before."""
        return any(self.clean[path] != digest for path, digest in self.objects().items() if path in self.clean)

    def test(self, label, seconds):
        """Runs the quick tests with a label. Gives 'passed', 'failed' or 'timed out', the time and the output."""
        known = {name: value for name, value in os.environ.items() if not name.startswith(("XDG_", "TARNEL_"))}
        known.update(HOME=os.path.join(self.work, "home"), TMPDIR=os.path.join(self.work, "tmp"), LC_ALL="C.UTF-8")
        command = [*self.cage, "ctest", "--test-dir", self.build, "-L", "^%s$" % label, "-LE", "^slow$", "-j%d" % self.jobs,
                   "--stop-on-failure", "--output-on-failure", "--no-tests=error", "--timeout", "%d" % seconds]
        started = time.monotonic()
        try:
            done = quiet(*command, env=known, timeout=seconds, preexec_fn=bound_to_us, start_new_session=True)
            state = "passed" if done.returncode == 0 else "failed"
            output = done.stdout
        except subprocess.TimeoutExpired:
            state, output = "timed out", ""
        shutil.rmtree(os.path.join(self.work, "tmp"), ignore_errors=True)
        os.makedirs(os.path.join(self.work, "tmp"), exist_ok=True)
        return state, time.monotonic() - started, output


def say(text):
    print(text, flush=True)


def warn(text):
    print(text, file=sys.stderr, flush=True)
