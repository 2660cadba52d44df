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
SIZES = {"1k": 1_000, "10k": 10_000, "100k": 100_000, "1m": 1_000_000, "huge": "huge"}
PROGRAM_ONLY = {"1m"}  # no Markdown files and no floors' file: the program is compared with itself
LIST = ("list", "-n", "1")  # takes as long however many notes are not indexed, unlike a search
SCHEMA = HERE.parent / "src" / "platform" / "model" / "storage" / "schema.cpp"


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
        if self.floor.exists():
            shutil.copy(self.floor, folder / "floor.sqlite")
        os.sync()  # or the first commit to be timed waits for these bytes
        return Corpus(self.size, folder, self.facts)


def generator_identity():
    """Changes with what the corpora are made of."""
    digest = hashlib.sha256()
    for source in [*sorted((HERE / "corpus").glob("*")), SCHEMA]:
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

    if size in PROGRAM_ONLY:
        facts = json.loads(generate("facts", "-"))
    else:
        facts = json.loads(generate("markdown", made.markdown))
        generate("floor", made.floor)
    # The program makes its database itself, and brings its index up to date, a bounded step at
    # the end of each command. What it leaves for later is what its user has, too.
    _run(made, program, *LIST)
    generate("rows", made.database)
    facts["broadTag"] = _broad_tag(made.database)
    facts["indexingCommands"], facts["notIndexed"] = _index(made, program)
    (folder / "facts.json").write_text(json.dumps(facts))


def _broad_tag(database):
    """The tag of the first level that, with those below it, the notes nearest to a sixth carry."""
    notes = _ask(database, "SELECT count(*) FROM note")
    shares = _rows(
        database,
        "SELECT CASE instr(title, '/') WHEN 0 THEN title ELSE substr(title, 1, instr(title, '/') "
        "- 1) END AS root, count(DISTINCT note) FROM noteTag JOIN tag ON tag.id = tag GROUP BY root")
    return min(shares, key=lambda share: abs(share[1] - notes / 6), default=("",))[0]


def _run(corpus, program, *arguments):
    subprocess.run([program, *arguments], env=corpus.environment, check=True, capture_output=True)


def _index(corpus, program):
    """How many commands it took, and how many notes are left for later."""
    commands, left = 0, unindexed(corpus.database)
    while left > 0:
        _run(corpus, program, *LIST)
        commands += 1
        before, left = left, unindexed(corpus.database)
        if left == before:
            break
    return commands, left


def tag_all(corpus, tag, program):
    """Writes a tag into each note of a copy, in both files, and has the program index them."""
    connection = sqlite3.connect(corpus.database)
    with connection:
        connection.execute("INSERT INTO tag (title) VALUES (?)", (tag,))
        connection.execute("UPDATE note SET text = text || char(10, 10) || '#' || ?", (tag,))
        connection.execute(
            "INSERT INTO noteTag SELECT note.id, tag.id FROM note, tag WHERE tag.title = ?", (tag,))
    connection.close()
    connection = sqlite3.connect(corpus.floor)
    with connection:
        connection.execute("UPDATE body SET text = text || char(10, 10) || '#' || ?", (tag,))
        connection.execute("UPDATE note SET tags = tags || ',#' || ?", (tag,))
        connection.execute("INSERT INTO noteTag SELECT ?, id FROM note", (tag,))
    connection.close()
    _index(corpus, program)
    os.sync()


def change_all(corpus):
    """Changes the text of each note, as another program does."""
    connection = sqlite3.connect(corpus.database)
    with connection:
        connection.execute("UPDATE note SET text = text || char(10)")
    connection.close()
    os.sync()


def tagged_texts(database, tag):
    """What the notes with the tag hold, and when each was changed, by id."""
    return dict(_rows(
        database,
        "SELECT id, text || modificationDate FROM note WHERE id IN "
        "(SELECT note FROM noteTag JOIN tag ON tag.id = tag WHERE title = ?)", tag))


def unindexed(database):
    return _ask(
        database,
        "SELECT count(*) FROM noteSummary WHERE searchRow IS NULL OR textDigest IS NULL",
    )


def note_count(database):
    return _ask(database, "SELECT count(*) FROM note")


def first_texts(corpus, count):
    return [text for text, in _rows(
        corpus.floor, "SELECT text FROM body ORDER BY id LIMIT ?", count)]


def newest_texts(database, count):
    return [text for text, in _rows(
        database, "SELECT text FROM note ORDER BY id DESC LIMIT ?", count)][::-1]


def text_length(database):
    return _ask(database, "SELECT sum(length(text)) FROM note")


def _ask(database, question):
    return _rows(database, question)[0][0]


def clear(corpus, program):
    """Gives the corpus a new database without notes."""
    shutil.rmtree(corpus.database.parent)
    _run(corpus, program, *LIST)


def add_rows(corpus, count, build):
    """Adds notes as another program does, by plain SQL."""
    generator = build / "bench" / "bench_corpus"
    subprocess.run([generator, "rows", str(count), corpus.database], check=True)
    os.sync()


def _rows(database, question, *values):
    # Read-only: otherwise closing it would write the log back and remove it.
    connection = sqlite3.connect(f"file:{database}?mode=ro", uri=True)
    try:
        return connection.execute(question, values).fetchall()
    finally:
        connection.close()
