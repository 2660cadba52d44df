#pragma once

#include <string_view>

namespace tavi {

/// The text of the short overview below the list of commands.
inline constexpr std::string_view overviewText = R"(HELP:
  tavicli -h                  This short overview.
  tavicli help                This short overview.
  tavicli help <subcommand>   Detailed help for one command.
  tavicli help all            Full reference for every command (pipe to an AI).

OUTPUT FORMATS:
  --format tsv   Tab-separated, no header (default).
  --format csv   Comma-separated, RFC 4180, with header row.
  --format json  Single JSON document on stdout. Every command produces
                 valid JSON when this flag is set, including errors.

  --fields f1,f2   Select fields (comma-separated, or "all").
  Default fields vary by command; see command --help.

JSON OUTPUT SHAPES:
  list / search / tags list / pin list / attachments list / search-in
                     → `[{...},{...}]`  (empty: `[]`)
  show / create      → `{...}`
  cat                → `{"content":"..."}`
  --count            → `{"count":N}`
  errors             → `{"error":{"code":"...","message":"..."}}` on stdout

  Mutating commands (edit, overwrite, append, archive, restore, trash,
  open, tags add/remove/rename/delete, pin add/remove, attachments
  add/delete) produce nothing on success and do not accept --format.
  Use the MCP server if you need a structured response from a write.

CONVENTIONS:
  Exit codes: 0 success, 1 business error, 64 usage error.
  Errors go to stderr as plain text for TSV/CSV; with --format json they
  go to stdout as a JSON object. Exit code is unchanged.
  Mutating commands are silent on success — exit code is the signal.
  Tags: #single, #multi word#, #nested/child. Input with or without #.
  Timestamps: ISO 8601 UTC (YYYY-MM-DDTHH:MM:SSZ).
  TSV escaping: \n \r \t \\. Text flags unescape the same; stdin does not.
  --content reads from stdin when omitted.
  Note ID or --title (case-insensitive) to identify notes.
  Encrypted note content is not accessible through the CLI.

TIPS:
  create returns a structured row — capture the ID for subsequent commands.
  search uses inline operators (@title, @today, #tag), not flags.
  Use --format json for structured parsing. Default TSV has no header.
  list and search return all matches. Use -n and --fields to limit output.)";

}  // namespace tavi
