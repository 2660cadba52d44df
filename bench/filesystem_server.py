"""The protocol's official filesystem server from npm, which serves notes as files, for comparison.

It cannot search in texts, so only the other requests are compared.
"""

import json
import shutil
import subprocess
from pathlib import Path

HERE = Path(__file__).resolve().parent / "filesystem_server"


def installed(build, log):
    """The command that starts it, without its folder argument; None without Node.js and npm."""
    if shutil.which("npm") is None or shutil.which("node") is None:
        return None
    folder = build / "bench" / "filesystem_server"
    script = folder / "node_modules/@modelcontextprotocol/server-filesystem/dist/index.js"
    if not script.exists():
        log("installing the filesystem server")
        folder.mkdir(parents=True, exist_ok=True)
        for file in HERE.iterdir():
            shutil.copy(file, folder)
        subprocess.run(["npm", "ci", "--no-audit", "--no-fund"], cwd=folder, check=True,
                       capture_output=True)
    return ["node", script]


def request(tool, corpus):
    """The request that corresponds to one of our tools; None if there is none."""
    if tool == "get_note":
        return _call("read_text_file", {"path": _file(corpus, corpus.facts["notes"] // 2)})
    if tool == "list_notes":
        files = [_file(corpus, number) for number in range(corpus.facts["notes"])]
        return _call("read_multiple_files", {"paths": files})
    return None


def _file(corpus, number):
    return str(corpus.markdown / str(number // 1000) / f"{number}.md")


def _call(tool, arguments):
    params = {"name": tool, "arguments": arguments}
    return json.dumps({"jsonrpc": "2.0", "id": 1, "method": "tools/call", "params": params})
