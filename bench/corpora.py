"""The corpora: Markdown files, the program's database and the floors' file, made once and kept."""

import hashlib
import json
import os
import shutil
import sqlite3
import subprocess
from dataclasses import dataclass
from pathlib import Path

HERE = Path(__file__).resolve().parent
SIZES = {"1k": 1_000, "10k": 10_000, "100k": 100_000, "huge": "huge"}


@dataclass
class Corpus:
    size: str
    folder: Path
    facts: dict  # see bench_corpus

    @property
    def markdown(self):
        return self.folder / "markdown"

    @property
    def floor(self):
        return self.folder / "floor.sqlite"

    @property
    def database(self):
        return self.folder / "data" / "tavi" / "tavi.sqlite"

    @property
    def environment(self):
        """In it the program finds this corpus, and nothing else of the user's."""
        return {
            "PATH": os.environ["PATH"],
            "HOME": str(self.folder / "home"),
            "XDG_DATA_HOME": str(self.folder / "data"),
            "LANG": "C.UTF-8",
        }

    def scratch(self):
        """A copy that may be written to; the files' bytes are copied, the Markdown is not."""
        folder = self.folder.with_name(self.folder.name + "-scratch")
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        shutil.copytree(self.folder / "data", folder / "data")
        (folder / "home").mkdir()
        shutil.copy(self.floor, folder / "floor.sqlite")
        os.sync()  # or the first commit to be timed waits for these bytes
        return Corpus(self.size, folder, self.facts)


def generator_identity():
    """Changes with what the corpora are made of."""
    digest = hashlib.sha256()
    sources = sorted((HERE / "corpus").glob("*"))
    sources.append(HERE.parent / "src" / "platform" / "model" / "schema.cpp")
    for source in sources:
        digest.update(source.read_bytes())
    return digest.hexdigest()[:10]


def corpus(size, cache, build, program, log):
    """The corpus of that size, made if the cache lacks it."""
    folder = cache / f"{size}-{generator_identity()}"
    facts = folder / "facts.json"
    if not facts.exists():
        for old in cache.glob(f"{size}-*"):
            shutil.rmtree(old)
        log(f"making the corpus of {size}")
        _make(size, folder, build / "bench" / "bench_corpus", program)
    return Corpus(size, folder, json.loads(facts.read_text()))


def _make(size, folder, generator, program):
    count = str(SIZES[size])
    made = Corpus(size, folder, {})
    for inner in ("home", "data", "markdown"):
        (folder / inner).mkdir(parents=True)

    def generate(form, path):
        run = subprocess.run([generator, form, count, path], check=True, capture_output=True)
        return run.stdout

    facts = json.loads(generate("markdown", made.markdown))
    generate("floor", made.floor)
    # The program makes its database itself, and brings its index up to date, a bounded step at
    # the end of each command. What it leaves for later is what its user has, too.
    command = [program, "search", "nothing holds this", "-n", "1"]
    subprocess.run(command, env=made.environment, check=True, capture_output=True)
    generate("rows", made.database)
    facts["indexingCommands"] = 0
    left = unindexed(made.database)
    while left > 0:
        subprocess.run(command, env=made.environment, check=True, capture_output=True)
        facts["indexingCommands"] += 1
        before, left = left, unindexed(made.database)
        if left == before:
            break
    facts["notIndexed"] = left
    (folder / "facts.json").write_text(json.dumps(facts))


def unindexed(database):
    connection = sqlite3.connect(database)
    try:
        query = "SELECT count(*) FROM noteSummary WHERE searchRow IS NULL OR textDigest IS NULL"
        return connection.execute(query).fetchone()[0]
    finally:
        connection.close()
