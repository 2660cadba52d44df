# Makes a bundle's manifest from the server's answers to "initialize" and "tools/list".
{
  manifest_version: "0.3",
  name: "tavicli",
  display_name: "Tavi notes",
  version: (.[0].result.serverInfo.version | split(" ")[0]),
  description: "Read and write the Markdown notes of Tavi, with guarded writes.",
  long_description: ("Gives a client the notes of Tavi, a note-taking application, in the local "
    + "database. A write that is based on an outdated read is refused, an edit must match exactly, "
    + "and no attachment is dropped unless its removal was declared. Nothing is sent over the network."),
  author: {name: "The tavicli developers"},
  license: "MIT",
  keywords: ["notes", "markdown"],
  server: {
    type: "binary",
    entry_point: "server/tavicli",
    mcp_config: {command: "${__dirname}/server/tavicli", args: ["mcp-server"], env: {}}
  },
  tools: [.[1].result.tools[] | {name, description: (.description | split("\n")[0])}],
  compatibility: {platforms: ["linux"]}
}
