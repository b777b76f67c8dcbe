# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes logs of Claude Code as large and as shaped as real ones: three fifths of the bytes are what tools gave back,
nearly a quarter the assistant's own lines, the longest lines above a megabyte."""

import datetime
import json
import pathlib
import random
import uuid

FILES = 400
BYTES = 500_000_000
# Of 161,000 lines in 522 MB of real logs.
LINE_LENGTH = 3_240
SHARES = {"assistant": 0.40, "user": 0.224, "progress": 0.23, "attachment": 0.036, "snapshot": 0.03, "system": 0.03,
          "mode": 0.05}
FIRST_DAY = datetime.datetime(2026, 4, 6, tzinfo=datetime.timezone.utc)

WORDS = ("return value result error context session file path string const auto if else for while function import "
         "test expect commit branch review the and is not of in to that this with \\n \\n\\n \\t \\\" \\\" { } ( ) ; , . : "
         "üblich “quoted” → 0x7f 1.25 https://example.com/a/b?c=d").split()


class Maker:
    def __init__(self, seed=20260406):
        self.random = random.Random(seed)
        # One long text, cut anew for every line; a cut never falls into an escape.
        self.text = " ".join(self.random.choices(WORDS, k=400_000)).split(" ")
        self.joined = {}

    def said(self, length):
        """JSON text content of about this many bytes."""
        count = max(1, length // 6)
        if count < 2000:
            start = self.random.randrange(len(self.text) - count)
            return " ".join(self.text[start:start + count])
        key = count // 1000
        if key not in self.joined:
            self.joined[key] = " ".join(self.text[i % len(self.text)] for i in range(key * 1000))
        return self.joined[key]

    def size(self, mean, largest):
        """Most are short and a few are very long, as in life."""
        return int(min(largest, self.random.lognormvariate(0, 1.35) * mean / 2.49))


class Session:
    def __init__(self, maker, number):
        self.maker = maker
        self.random = maker.random
        self.id = str(uuid.UUID(int=self.random.getrandbits(128), version=4))
        self.folder = f"/Users/someone/work/project-{number % 12}"
        self.at = FIRST_DAY + datetime.timedelta(minutes=self.random.randrange(6 * 24 * 60))
        self.branch = f"feature/{number}"

    def stamp(self):
        self.at += datetime.timedelta(milliseconds=self.random.randrange(200, 40_000))
        return self.at.strftime("%Y-%m-%dT%H:%M:%S.") + f"{self.at.microsecond // 1000:03d}Z"

    def head(self):
        return (f'{{"parentUuid":"{uuid.UUID(int=self.random.getrandbits(128))}","isSidechain":false,'
                f'"userType":"external","cwd":"{self.folder}","sessionId":"{self.id}","version":"2.1.29",'
                f'"gitBranch":"{self.branch}"')

    def tail(self):
        return f'"uuid":"{uuid.UUID(int=self.random.getrandbits(128))}","timestamp":"{self.stamp()}"'

    def user(self):
        if self.random.random() < 0.1:
            said = self.maker.said(self.maker.size(400, 20_000))
            return f'{self.head()},"type":"user","message":{{"role":"user","content":"{said}"}},{self.tail()}}}'
        said = self.maker.said(self.maker.size(4_600, 700_000))
        return (f'{self.head()},"type":"user","message":{{"role":"user","content":[{{"tool_use_id":"toolu_01QNBK",'
                f'"type":"tool_result","content":"{said}","is_error":false}}]}},{self.tail()},'
                f'"toolUseResult":{{"stdout":"{said}","stderr":"","interrupted":false,"isImage":false}}}}')

    def assistant(self):
        said = self.maker.said(self.maker.size(700, 60_000))
        kind = self.random.random()
        if kind < 0.5:
            block = (f'{{"type":"tool_use","id":"toolu_01QNBK","name":"Edit","input":{{"file_path":"{self.folder}/a.cpp",'
                     f'"old_string":"{said}","new_string":"{said}"}}}}')
        elif kind < 0.75:
            block = f'{{"type":"thinking","thinking":"{said}","signature":"{"Eq8D" * 60}"}}'
        else:
            block = f'{{"type":"text","text":"{said}"}}'
        usage = (f'{{"input_tokens":{self.random.randrange(9)},"cache_creation_input_tokens":{self.random.randrange(9000)},'
                 f'"cache_read_input_tokens":{self.random.randrange(90_000)},"output_tokens":{self.random.randrange(900)},'
                 '"service_tier":"standard"}')
        return (f'{self.head()},"message":{{"model":"claude-opus-4-5-20251101","id":"msg_{self.random.getrandbits(64):x}",'
                f'"type":"message","role":"assistant","content":[{block}],"stop_reason":null,"stop_sequence":null,'
                f'"usage":{usage}}},"requestId":"req_{self.random.getrandbits(64):x}","type":"assistant",{self.tail()}}}')

    def progress(self):
        said = self.maker.said(self.maker.size(900, 200_000))
        return (f'{self.head()},"type":"progress","data":{{"message":{{"type":"user","message":{{"role":"user","content":'
                f'[{{"type":"tool_result","content":"{said}"}}]}}}},"type":"agent_progress","agentId":"a0853aa"}},'
                f'"toolUseID":"agent_msg_01",{self.tail()}}}')

    def attachment(self):
        said = self.maker.said(self.maker.size(900, 20_000))
        return (f'{self.head()},"attachment":{{"type":"hook_success","hookName":"Stop","content":"{said}"}},'
                f'"type":"attachment",{self.tail()}}}')

    def snapshot(self):
        said = self.maker.said(self.maker.size(2_000, 60_000))
        return f'{{"type":"file-history-snapshot","messageId":"{self.id}","snapshot":{{"note":"{said}"}},"isSnapshotUpdate":false}}'

    def system(self):
        return f'{self.head()},"type":"system","subtype":"turn_duration","durationMs":48286,{self.tail()},"isMeta":false}}'

    def mode(self):
        return f'{{"type":"permission-mode","permissionMode":"auto","sessionId":"{self.id}"}}'


def write_log(maker, folder, number, size):
    session = Session(maker, number)
    project = folder / f"-Users-someone-work-project-{number % 12}"
    project.mkdir(parents=True, exist_ok=True)
    kinds, weights = list(SHARES), list(SHARES.values())
    with open(project / f"{session.id}.jsonl", "wb") as log:
        while log.tell() < size:
            for kind in maker.random.choices(kinds, weights, k=8):
                log.write(getattr(session, kind)().encode() + b"\n")


def make(home, files=FILES, size=BYTES):
    """Makes the logs below `home`, unless they are there already; gives the files."""
    done = home / "made.json"
    plan = {"files": files, "bytes": size, "form": 2}
    folder = home / ".claude" / "projects"
    if not done.exists() or json.loads(done.read_text()) != plan:
        maker = Maker()
        shares = [maker.random.lognormvariate(0, 0.8) for _ in range(files)]
        for number in range(files):
            write_log(maker, folder, number, size * shares[number] / sum(shares))
        done.write_text(json.dumps(plan))
    return sorted(folder.glob("*/*.jsonl"))


if __name__ == "__main__":
    import sys
    made = make(pathlib.Path(sys.argv[1]))
    print(len(made), sum(path.stat().st_size for path in made))
