"""What the tests with the real host share: a host without a window, fed and read as a user would."""
import os
import subprocess
import sys
import threading


def expect(condition, *what):
    if not condition:
        print(*what, sep="\n")
        sys.exit(1)


class Host:
    """A host without a window, with its own user."""

    def __init__(self, program, folder, *arguments, limit=60):
        environment = dict(os.environ, HOME=folder, XDG_DATA_HOME=folder + "/data", XDG_CONFIG_HOME=folder + "/config",
                           XDG_STATE_HOME=folder + "/state")
        self.process = subprocess.Popen([program, "--headless", *arguments], cwd=folder, env=environment, text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.lines = []
        self.limit = threading.Timer(limit, self.process.kill)
        self.limit.start()

    @property
    def output(self):
        return "".join(self.lines)

    def type(self, text):
        self.process.stdin.write(text)
        self.process.stdin.flush()

    def wait_for(self, text):
        """Reads on until a line holds the text."""
        if text in self.output:
            return
        while not self.lines or text not in self.lines[-1]:
            line = self.process.stdout.readline()
            if not line:
                expect(False, "the host never said '%s':" % text, self.output[-20000:])
            self.lines.append(line)

    def end(self):
        self.type("QUIT\n")
        self.lines.append(self.process.stdout.read())
        self.process.wait()
        self.limit.cancel()
        return self.output

    def kill(self):
        self.process.kill()
        self.process.wait()
        self.limit.cancel()
