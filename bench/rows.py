"""What is measured: a row's commands, how it is checked, and how near the floor it should come."""

import json
import shlex
from dataclasses import dataclass, field
from typing import Callable

import corpora

NOTE_SIZES = ("1k", "10k", "100k", "1m")


@dataclass
class Row:
    name: str
    aim: dict  # size: times the floor; None: there is none
    floor: Callable  # (corpus) -> arguments; the first is a floor's name
    program: Callable  # (corpus) -> arguments
    others: dict = field(default_factory=dict)  # name: (corpus) -> arguments
    check: str = "equal"  # what the answers must be; "any": there is nothing to compare
    ahead_of: str = ""  # of the others, the one that the program must be quicker than


@dataclass
class WriteRow(Row):
    """A write. Done on a copy of the corpus; the number of syncs is counted."""


@dataclass
class AttachRow(Row):
    """A large file is attached. The floor is `cp` and `sync`, whatever they cost; a program that does
    no more than that is timed too."""

    bytes: int = 0


@dataclass
class RenameRow(Row):
    """A tag that every note has is renamed."""


@dataclass
class FlatRow(Row):
    """A command with a million notes. In the floor's place stands the program with a thousand."""

    changes: bool = False  # whether it writes, and so wants a copy


@dataclass
class ImportRow(Row):
    """The commands that follow when another program has added notes: each brings the index up to
    date by a bounded step, after its answer. In the floor's place stands the same command with
    nothing left to do; the aim is in milliseconds above it."""


@dataclass
class ServerRow(Row):
    """A request to a running server; the floor keeps its connection. A row of its own, its name
    followed by "p99", has the time within which 99 in 100 answers come."""

    tool: str = ""
    arguments: Callable = dict  # (corpus) -> the tool's
    p99_aim: dict = field(default_factory=dict)  # size: times the floor's p99


@dataclass
class ServerWriteRow(ServerRow):
    """A request that adds a note, with a durable commit, to a copy of the corpus."""


@dataclass
class LoadRow(Row):
    """Many notes, one durable commit each, through one server. The floor keeps its trigram index in
    the same commits. The aim is a rate."""

    notes: Callable = list  # (corpus, number) -> the arguments of create_note


@dataclass
class CatchUpRow(ServerRow):
    """Requests to a server that brings the index up to date while it waits for them. In the floor's
    place stand the same requests with nothing left to do; the aim is in milliseconds above them."""


@dataclass
class MemoryRow(Row):
    """A server's memory after many calls, in place of the program's; after few, of the floor's."""

    calls: Callable = list  # (corpus) -> tools with their arguments, called in turn
    few: int = 1_000
    many: int = 100_000


@dataclass
class SpaceRow(Row):
    """How large the database is."""


def by_size(*factors):
    return dict(zip(NOTE_SIZES[:3], factors))


def at(column):
    return lambda corpus: corpus.facts[column]


def sqlite_shell(sql):
    """The program's database in the sqlite3 shell, with plain SQL over the tables open to all."""
    def command(corpus):
        return ["sqlite3", "-batch", str(corpus.database), sql.format(**corpus.facts)]
    return command


LISTED = "trashed = 0 AND archived = 0"
ORDER = "ORDER BY pinned DESC, modificationDate DESC"
TAGS = (
    "(SELECT group_concat('#' || tag.title) FROM noteTag JOIN tag ON tag.id = noteTag.tag "
    "WHERE noteTag.note = note.id)"
)
COLUMNS = f"uniqueIdentifier, title, {TAGS}"


def holding(word, end=""):
    return sqlite_shell(
        f"SELECT {COLUMNS} FROM note WHERE text LIKE '%{{{word}}}%' AND {LISTED} {ORDER} {end}"
    )


def ripgrep(word):
    return lambda corpus: ["rg", "-il", corpus.facts[word], str(corpus.markdown)]


def grep(word):
    return lambda corpus: ["grep", "-ril", corpus.facts[word], str(corpus.markdown)]


def floor_command(name, *facts):
    def command(corpus):
        return [name, str(corpus.floor), *(corpus.facts[fact] for fact in facts)]
    return command


def program_command(*arguments):
    """Each argument may name facts in braces."""
    return lambda corpus: [argument.format(**corpus.facts) for argument in arguments]


def call(tool, arguments):
    """A JSON-RPC request, on one line."""
    params = {"name": tool, "arguments": arguments}
    request = {"jsonrpc": "2.0", "id": 1, "method": "tools/call", "params": params}
    return json.dumps(request, separators=(",", ":"))  # as the floor expects it


LOADED_NOTES = 2_000


def small_note(number):
    return {"title": f"Note {number}", "content": f"Its text, number {number}.", "tags": ["work"]}


def copied_note(text):
    """The arguments of create_note that give a new note this text."""
    heading, content = text.split("\n\n", 1)
    return {"title": heading.removeprefix("# "), "content": content}


def asked(name, factor, tool, arguments, kind=ServerRow):
    """A server's row with one aim for the median and the p99 at every size."""
    aim = by_size(factor, factor, factor)
    return kind(name, aim, floor_command("server"), program_command("mcp-server"), tool=tool,
                arguments=arguments, p99_aim=aim)


def flat(name, *arguments, aim=1.2, changes=False):
    return FlatRow(name, {"1m": aim}, None, program_command(*arguments), changes=changes)


ROWS = [
    Row(
        "start",
        {"-": 1.25},
        lambda corpus: ["start"],
        program_command("--version"),
        {"sqlite3": lambda corpus: ["sqlite3", "--version"]},
        check="any",
    ),
    Row(
        "show by id",
        by_size(1.6, 1.6, 1.6),
        floor_command("show", "sample"),
        program_command("show", "{sample}"),
        {"sqlite3": sqlite_shell(
            f"SELECT {COLUMNS} FROM note WHERE uniqueIdentifier = '{{sample}}'")},
    ),
    Row(
        "list 20 newest",
        by_size(1.6, 1.6, 1.6),
        floor_command("list_page"),
        program_command("list", "-n", "20"),
        {"sqlite3": sqlite_shell(f"SELECT {COLUMNS} FROM note WHERE {LISTED} {ORDER} LIMIT 20")},
    ),
    Row(
        "list all",
        by_size(1.6, 1.6, 1.6),
        floor_command("list_all"),
        program_command("list"),
        {"sqlite3": sqlite_shell(f"SELECT {COLUMNS} FROM note WHERE {LISTED} {ORDER}")},
    ),
    Row(
        "count",
        by_size(1.5, 1.4, 0.5),
        floor_command("count"),
        program_command("list", "--count"),
        {"sqlite3": sqlite_shell(f"SELECT count(*) FROM note WHERE {LISTED}")},
    ),
    Row(
        "rare word",
        by_size(1.5, 1.5, 1.5),
        floor_command("rare_word", "rareWord"),
        program_command("search", "{rareWord}"),
        {"sqlite3": holding("rareWord"), "rg": ripgrep("rareWord"), "grep": grep("rareWord")},
    ),
    Row(
        "common word, first 20",
        by_size(1.6, 1.8, 2.0),
        floor_command("common_word", "commonWord"),
        program_command("search", "{commonWord}", "-n", "20"),
        {"sqlite3": holding("commonWord", "LIMIT 20"), "rg": ripgrep("commonWord")},
    ),
    Row(
        "two-letter word",
        by_size(1.2, 1.2, 1.2),
        floor_command("short_word", "twoLetterWord"),
        program_command("search", "{twoLetterWord}"),
        {"sqlite3": holding("twoLetterWord"), "rg": ripgrep("twoLetterWord")},
    ),
    Row(
        "tag filter",
        by_size(1.6, 1.8, 1.8),
        floor_command("tag", "listedTag"),
        program_command("list", "--tag", "{listedTag}"),
        {"rg": lambda corpus: ["rg", "-l", f"#{corpus.facts['listedTag']}\\b",
                               str(corpus.markdown)]},
    ),
    Row(
        "tag filter, a sixth of the notes",
        by_size(1.6, 1.6, 1.6),
        floor_command("tag", "broadTag"),
        program_command("list", "--tag", "{broadTag}"),
    ),
    Row(
        "search-in, one note of 10 MB",
        {"huge": 1.3},
        floor_command("search_in", "sample", "rareWord"),
        program_command("search-in", "{sample}", "--string", "{rareWord}", "--fields", "offset"),
        {"rg": lambda corpus: ["rg", "-bio", corpus.facts["rareWord"],
                               str(corpus.markdown / "0" / "0.md")],
         "grep": lambda corpus: ["grep", "-bio", corpus.facts["rareWord"],
                                 str(corpus.markdown / "0" / "0.md")]},
        ahead_of="grep",
    ),
    WriteRow(
        "create, durable",
        by_size(1.5, 1.5, 1.5),
        floor_command("commit"),
        program_command("create", "A small note", "--content", "Its text, number 1.", "--tags",
                        "work"),
        {"sqlite3": sqlite_shell(
            "INSERT INTO note (title, text) VALUES ('A small note', '# A small note');")},
    ),
    WriteRow(
        "append, durable",
        by_size(1.5, 1.5, 1.5),
        floor_command("commit"),
        program_command("append", "{scratchNote}", "--content", "One more line."),
    ),
    WriteRow(
        "edit, durable",
        by_size(1.5, 1.5, 1.5),
        floor_command("commit"),
        program_command("edit", "{scratchNote}", "--find", "the tail", "--insert-before", "."),
    ),
    AttachRow(
        "attach 50 MB, durable",
        {"-": 2},
        lambda corpus: ["sh", "-c", 'cp "$0" "$1/$$" && sync "$1/$$"',
                        corpus.facts["largeFile"], corpus.facts["copies"]],
        program_command("attachments", "add", "{scratchNote}", "--filename", "large.bin"),
        bytes=50_000_000,
    ),
    RenameRow(
        "rename a tag of all notes",
        by_size(2.5, 2.5, 2.5),
        floor_command("rename"),
        program_command("tags", "rename"),
    ),
    ImportRow(
        "next commands after an import",
        {"100k": 100},
        None,
        program_command("list", "-n", "20"),
    ),
    asked("server: get_note", 2, "get_note", lambda corpus: {"id": corpus.facts["sample"]}),
    asked("server: rare word", 2, "search_notes",
          lambda corpus: {"query": corpus.facts["rareWord"]}),
    asked("server: common word, first 20", 2, "search_notes",
          lambda corpus: {"query": corpus.facts["commonWord"], "limit": 20}),
    asked("server: create_note, durable", 1.5, "create_note", lambda corpus: small_note(1),
          kind=ServerWriteRow),
    ServerRow(
        "server: 20 MB of notes with text",
        {"10k": 1.6},
        floor_command("server"),
        program_command("mcp-server"),
        tool="list_notes",
        arguments=lambda corpus: {"includeContent": True},
    ),
    LoadRow(
        "load, a durable commit a note",
        {"10k": 0.8},
        lambda corpus: ["commit", str(corpus.floor), "copies"],
        program_command("mcp-server"),
        notes=lambda corpus, number: [
            copied_note(text) for text in corpora.first_texts(corpus, number)],
    ),
    LoadRow(
        "load of one-line notes, a durable commit a note",
        {"10k": 0.5},
        lambda corpus: ["commit", str(corpus.floor), "small"],
        program_command("mcp-server"),
        notes=lambda corpus, number: [small_note(i) for i in range(number)],
    ),
    CatchUpRow(
        "server: get_note while the index catches up",
        {"10k": 10},
        None,
        program_command("mcp-server"),
        tool="get_note",
        arguments=lambda corpus: {"id": corpus.facts["sample"]},
    ),
    MemoryRow(
        "server: memory after 100,000 calls",
        {"1k": 1.05},  # the heap settles within a few pages
        None,
        program_command("mcp-server"),
        calls=lambda corpus: [
            ("get_note", {"id": corpus.facts["sample"], "includeContent": True}),
            ("search_notes", {"query": corpus.facts["rareWord"]}),
            ("list_notes", {"limit": 20}),
            ("get_note", {"id": "no such note"}),
        ],
    ),
    SpaceRow("database to text", {"10k": 2.1, "100k": 2.0}, None, None),
    # Last, since the disk is busy for a while after a copy of so many notes.
    *(flat(name, *arguments) for name, arguments in {
        "show by id": ("show", "{sample}"),
        "list 20 newest": ("list", "-n", "20"),
        "count": ("list", "--count"),
    }.items()),
    # The 20 are among the newest 92 of a million notes, and among the newest 60 of a thousand.
    flat("common word, first 20", "search", "{commonWord}", "-n", "20", aim=1.4),
    flat("create, durable", "create", "A small note", "--content", "Its text.", changes=True),
    flat("append, durable", "append", "{scratchNote}", "--content", "One line.", changes=True),
]


def shown(command):
    """A command as a person would type it, for messages."""
    return shlex.join(str(argument) for argument in command)
