// Talks to the server as its clients do: through the official TypeScript SDK, whose schemas check
// every answer. Usage: node client.mjs <tavicli> <docs/mcp.md>. Works in a home of its own; ends with 1 at the
// first answer that is not as it should be.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { chmodSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import { AjvJsonSchemaValidator } from '@modelcontextprotocol/sdk/validation/ajv';

const toolNames = [
  'create_note', 'get_note', 'open_note', 'read_note_content', 'list_notes', 'search_notes',
  'search_in_note', 'append_to_note', 'overwrite_note', 'edit_note', 'list_pins', 'add_pins',
  'remove_pins', 'archive_note', 'trash_note', 'restore_note', 'list_tags', 'add_tags',
  'remove_tags', 'rename_tag', 'delete_tag', 'list_attachments', 'delete_attachment',
  'read_attachment',
];

const program = resolve(process.argv[2] ?? 'tavicli');
const home = mkdtempSync(join(tmpdir(), 'tavicli-sdk-'));
const opened = join(home, 'opened');
const env = { HOME: home, PATH: `${home}/bin:${dirname(program)}:${process.env.PATH}`, XDG_DATA_HOME: `${home}/data` };

function fakeDesktop() {
  mkdirSync(join(home, 'bin'));
  writeFileSync(join(home, 'bin/xdg-open'), `#!/bin/sh\necho "$1" > '${opened}'\n`);
  chmodSync(join(home, 'bin/xdg-open'), 0o755);
}

/** A client on a server of its own, which must say nothing but JSON-RPC. */
async function connect(server = { command: program, args: ['mcp-server'] }) {
  const transport = new StdioClientTransport({ ...server, env, stderr: 'pipe' });
  const client = new Client({ name: 'sdk-test', version: '1.0.0' });
  const noise = [];
  transport.stderr.on('data', (text) => noise.push(String(text)));
  client.onerror = (error) => noise.push(error.message);
  await client.connect(transport);
  return { client, noise };
}

/** The structured answer of a tool, which stands as text as well. */
async function call(client, name, args = {}) {
  const result = await client.callTool({ name, arguments: args });
  assert.ok(!result.isError, `${name}: ${result.content[0]?.text}`);
  assert.equal(result.content.length, 1);
  assert.deepEqual(JSON.parse(result.content[0].text), result.structuredContent);
  return result.structuredContent;
}

async function refusal(client, name, args = {}) {
  const result = await client.callTool({ name, arguments: args });
  assert.equal(result.isError, true, `${name} was not refused`);
  assert.equal(result.structuredContent, undefined);
  return result.content[0].text;
}

async function checkHandshakeAndTools(client) {
  assert.equal(client.getServerVersion().name, 'tavicli');
  assert.deepEqual(client.getServerCapabilities(), { tools: {} });
  await client.ping();
  const { tools } = await client.listTools();
  assert.deepEqual(tools.map((tool) => tool.name), toolNames);
  for (const tool of tools) {
    new AjvJsonSchemaValidator().getValidator(tool.inputSchema);  // throws for a bad schema
    assert.equal(tool.inputSchema.additionalProperties, false);
    assert.equal(typeof tool.annotations.readOnlyHint, 'boolean');
  }
}

async function checkReading(client, id) {
  assert.equal((await call(client, 'get_note', { id })).content, undefined);
  const { content, metadata } =
      await call(client, 'get_note', { title: 'mars', includeContent: true });
  assert.equal(metadata.id, id);
  assert.match(metadata.created, /^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$/);
  assert.deepEqual(await call(client, 'read_note_content', { id }), { content });
  const listed = await call(client, 'list_notes', { tag: 'planet' });
  assert.deepEqual(listed.metadata.map((note) => note.id), [id]);
  assert.equal((await call(client, 'list_notes', { includeContent: true })).notes.length, 1);
  assert.equal((await call(client, 'search_notes', { query: 'dust' })).results.length, 1);
  const found = await call(client, 'search_notes', { query: 'dust', includeContent: true });
  assert.equal(found.resultsWithContent[0].note.content, content);
  const { matches } = await call(client, 'search_in_note', { id, string: 'DUST' });
  assert.equal(Buffer.from(content).indexOf('dust'), matches[0].byteOffset);
  assert.deepEqual(await call(client, 'open_note', { id, header: 'a & b' }), {});
  assert.match(readFileSync(opened, 'utf8'), /^tavi:\/\/x-callback-url\/open-note\?id=/);
}

async function checkWriting(client, id) {
  const appended = await call(client, 'append_to_note', { id, content: 'Olympus Mons' });
  assert.ok(appended.contentHash && !appended.id && !appended.tags);
  await call(client, 'edit_note', { id, edits: [{ find: 'dust', replace: 'rust' },
                                                { find: 'Olympus', insertBefore: '- ' }] });
  assert.match(await refusal(client, 'edit_note', { id, edits: [{ find: 'gone', replace: '' }] }),
               /^String not found in note /);
  const { metadata, content } = await call(client, 'get_note', { id, includeContent: true });
  assert.ok(content.includes('rust') && content.includes('- Olympus Mons'));
  assert.match(await refusal(client, 'overwrite_note', { id, content: 'x' }),
               /^baseHash is required/);
  assert.match(await refusal(client, 'overwrite_note', { id, content: 'x', baseHash: '0000000' }),
               /^Note has changed since last read/);
  await call(client, 'overwrite_note', { id, baseHash: metadata.contentHash,
                                         content: '# Mars\nred 🚀 / ünïcode\n\n#planet' });
  const { content: now } = await call(client, 'read_note_content', { id });
  assert.equal(now, '# Mars\nred 🚀 / ünïcode\n\n#planet');
}

async function checkTagsAndPins(client, id) {
  await call(client, 'add_tags', { id, tags: ['solar/inner'] });
  await call(client, 'add_tags', { id, tags: 'red, ' });
  const tags = async () => (await call(client, 'list_tags', { id })).tags;
  assert.deepEqual(await tags(), ['planet', 'red', 'solar/inner']);
  assert.deepEqual(await call(client, 'add_pins', { id, targets: ['global', 'planet'] }),
                   { pins: ['global', '#planet'] });
  assert.deepEqual((await call(client, 'list_pins', { id })).pins, ['global', '#planet']);
  await call(client, 'remove_pins', { id, targets: 'planet' });
  assert.match(await refusal(client, 'add_pins', { id, targets: ['nope'] }),
               /^Tags not found: nope/);
  assert.deepEqual(await call(client, 'rename_tag', { old: 'red', new: 'rusty' }),
                   { notesUpdated: 1 });
  assert.deepEqual(await call(client, 'delete_tag', { tag: 'rusty' }), { notesUpdated: 1 });
  await call(client, 'remove_tags', { id, tags: ['solar/inner'] });
  assert.deepEqual(await tags(), ['planet']);
}

async function checkAttachments(client, id) {
  const bytes = Buffer.from([0, 1, 254, 255, 47]);
  execFileSync(program, ['attachments', 'add', id, '--filename', 'map.bin'], { env, input: bytes });
  assert.deepEqual((await call(client, 'list_attachments', { id })).attachments,
                   [{ filename: 'map.bin', size: bytes.length }]);
  const { data } = await call(client, 'read_attachment', { id, filename: 'map.bin' });
  assert.deepEqual(Buffer.from(data, 'base64'), bytes);
  await call(client, 'delete_attachment', { id, filename: 'map.bin' });
  assert.match(await refusal(client, 'delete_attachment', { id, filename: 'map.bin' }),
               /^Attachment not found: map.bin/);
}

async function checkMoves(client, id) {
  assert.equal((await call(client, 'archive_note', { id })).location, 'archive');
  assert.equal((await call(client, 'trash_note', { id })).location, 'trash');
  assert.match(await refusal(client, 'get_note', { title: 'Mars' }), /^No note with title: Mars/);
  assert.equal((await call(client, 'restore_note', { id })).location, 'notes');
}

async function checkProtocolErrors(client) {
  await assert.rejects(call(client, 'no_such_tool'), { code: -32602 });
  await assert.rejects(client.listResources(), { code: -32601 });
}

/** On a client of its own: the SDK grumbles at an answer that it no longer waits for. */
async function checkCancellation() {
  const { client } = await connect();
  const cancelled = new AbortController();
  const hurried = client.callTool({ name: 'list_notes' }, undefined, { signal: cancelled.signal });
  cancelled.abort();
  await assert.rejects(hurried);
  await client.ping();
  await client.close();
}

/** Many requests at once come back each to its own. */
async function checkPipelining(client, id) {
  const offsets = [...Array(50).keys()];
  const slices = await Promise.all(
      offsets.map((offset) => call(client, 'read_note_content', { id, offset, limit: 1 })));
  const { content } = await call(client, 'read_note_content', { id });
  offsets.slice(0, 10).forEach((at) => assert.equal(slices[at].content, content[at]));
}

/** The filter of the manual's page, for clients that want `items` in every array. */
async function checkFilter() {
  const page = readFileSync(process.argv[3], 'utf8');
  const server = [...page.matchAll(/^```json\n(.*?)^```$/gms)]
      .map((block) => JSON.parse(block[1]).mcpServers?.tavicli)
      .find((found) => found?.command === 'sh');
  const { client, noise } = await connect(server);
  const { tools } = await client.listTools();
  const { properties } = tools.find((tool) => tool.name === 'edit_note').inputSchema;
  assert.deepEqual(properties.edits.items, { type: 'object' });
  const content = '"edits":{"description":"x","type":"array"}';
  const { id } = await call(client, 'create_note', { content });
  await call(client, 'edit_note', { id, edits: [{ find: 'array', replace: 'list' }] });
  assert.equal((await call(client, 'read_note_content', { id })).content,
               content.replace('array', 'list'));
  await client.close();
  assert.deepEqual(noise, []);
}

try {
  fakeDesktop();
  const { client, noise } = await connect();
  await checkHandshakeAndTools(client);
  const { id, tags } = await call(client, 'create_note',
                                  { title: 'Mars', content: 'dust / storms', tags: ['planet'] });
  assert.deepEqual(tags, ['planet']);
  await checkReading(client, id);
  await checkWriting(client, id);
  await checkTagsAndPins(client, id);
  await checkAttachments(client, id);
  await checkMoves(client, id);
  await checkProtocolErrors(client);
  await checkPipelining(client, id);
  await checkCancellation();
  await checkFilter();
  await client.close();
  assert.deepEqual(noise, []);
  console.log('Every answer was accepted.');
} finally {
  rmSync(home, { recursive: true });
}
