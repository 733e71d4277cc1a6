'use strict';

// The data of the page: see report/HtmlPage.cpp. Any value of a report may be absent, or of a type that a later version gave it.

const LOOKS = {
  __proto__: null,  // no inherited name is a verdict
  'crashed': {symbol: '▲', look: 'bad'},
  'ended': {symbol: '■', look: 'bad'},
  'hung': {symbol: '●', look: 'bad'},
  'unsteady': {symbol: '≈', look: 'doubt'},
  'failed': {symbol: '✗', look: 'bad'},
  'not-reached': {symbol: '?', look: 'doubt'},
  'missing': {symbol: '–', look: 'other'},
  'tolerated': {symbol: '◇', look: 'other'},
  'unavailable': {symbol: '□', look: 'other'},
  'no-material': {symbol: '○', look: 'other'},
  'good': {symbol: '✓', look: 'good'},
};
// Characters that hide, reverse or end what stands around them. Lines and tabs are kept in texts.
const DECEPTIVE = /[\u0000-\u001f\u007f-\u009f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u2069\ufeff]/g;
const collator = new Intl.Collator('en', {numeric: true});

const list = value => Array.isArray(value) ? value : [];
const record = value => value && typeof value === 'object' && !Array.isArray(value) ? value : {};
const number = value => Number.isFinite(value) ? value : null;
const escaped = character => '\\u' + character.charCodeAt(0).toString(16).padStart(4, '0');
const string = value => value === null || value === undefined ? ''
  : typeof value === 'object' ? JSON.stringify(value) : String(value);
const visible = value =>
  string(value).replace(DECEPTIVE, found => found === '\n' || found === '\t' ? found : escaped(found));

const DATA = readData();
const LEGEND = list(DATA.legend);  // the worst first
const GRAVITY = new Map(LEGEND.map(({verdict}, at) => [verdict, at]));
const BAD = new Set(LEGEND.filter(entry => entry.bad).map(entry => entry.verdict));

function readData() {
  try {
    return record(JSON.parse(document.getElementById('data').textContent));
  } catch {
    return {};
  }
}

const look = verdict => (LOOKS[verdict] || {look: 'other'}).look;
const gravity = verdict => GRAVITY.has(verdict) ? GRAVITY.get(verdict) : LEGEND.length;
const rank = item => item.spoils.length ? -1 : item.accepted ? LEGEND.length - 1 : gravity(item.verdict);
const worstFirst = (a, b) => rank(a) - rank(b);

/** An outcome, with what is known of the item itself. */
function toItem(row, value) {
  const from = record(value);
  const item = {
    kind: row.kind, name: row.name, label: row.label, group: row.group, title: row.title, plugin: row.plugin,
    coder: row.coder, codec: row.codec, verdict: string(from.verdict) || 'not-reached', seconds: number(from.seconds),
    reason: string(from.reason).trim(), text: string(from.text).trim(), phase: string(from.phase),
    input: string(from.input), package: string(from.package), depth: string(from.depth), checked: string(from.checked),
    path: string(from.path), carried: from.carried === true, accepted: from.accepted === true,
    remarks: list(from.remarks), company: list(from.company), spoils: list(from.spoils), repro: list(from.repro).map(string),
  };
  if (!item.reason && item.spoils.length) item.reason = `breaks ${plural(item.spoils.length, 'item')}`;
  item.bad = BAD.has(item.verdict) && !item.accepted || item.spoils.length > 0;
  item.hay = [item.name, item.label, item.title, item.group, item.verdict, item.reason, item.package, item.path, item.text].join('\n').toLowerCase();
  return item;
}

function toRow(value) {
  const from = record(value);
  const row = {
    kind: string(from.kind), name: string(from.name), label: string(from.label) || string(from.name),
    group: string(from.kind === 'codec' ? from.implementation : from.interface), title: string(from.title),
    plugin: string(from.plugin), coder: string(from.coder), codec: string(from.codec), usual: number(from.usual),
  };
  row.items = list(from.outcomes).map(outcome => toItem(row, outcome));
  return row;
}

function toHost(value, index, rows) {
  const from = record(value);
  const machine = record(from.machine);
  const differs = new Map(list(from.differs).map(([row, outcome]) => [row, outcome]));
  const host = {
    complete: from.complete !== false, problem: string(from.problem), started: string(from.started),
    seconds: number(from.seconds), machine, notes: list(from.notes),
    label: string(machine.host) || string(from.source) || `Report ${index + 1}`,
    surroundings: record(list(DATA.surroundings)[from.surroundings]),
    /** The item as it is on this host; none if it isn't there. */
    at: row => rows[row].items[differs.has(row) ? differs.get(row) : rows[row].usual],
  };
  host.key = [...differs].map(pair => pair.join(':')).join(' ');
  host.bad = rows.reduce((count, row, at) => count + (host.at(at)?.bad ? 1 : 0), 0);
  return host;
}

const plural = (count, noun) => `${count} ${noun}${count === 1 ? '' : 's'}`;
const clipped = (text, length) =>
  text.length <= length ? text : `${text.slice(0, length)}… (${text.length} characters)`;

const date = text => text.replace('T', ' ').replace(/(\.\d+)?Z/, ' UTC');

/** Never "0 ms": what took no time says nothing. */
function duration(seconds) {
  if (seconds === null) return '';
  if (seconds < 0.9995e-3) return seconds < 0.5e-6 ? '< 1 µs' : `${Math.round(seconds * 1e6)} µs`;
  if (seconds < 0.9995) return `${+(seconds * 1000).toPrecision(3)} ms`;
  if (seconds < 60) return `${seconds.toFixed(seconds < 10 ? 2 : 1)} s`;
  return `${Math.floor(seconds / 60)} min ${Math.floor(seconds % 60)} s`;
}

/** An argument as a shell reads it; what a terminal would obey or hide is spelled out. */
function quoted(argument) {
  if (/^[\w@%+:,.\/-]+$/.test(argument)) return argument;
  if (argument.search(DECEPTIVE) < 0) return `'${argument.replaceAll("'", "'\\''")}'`;
  return `$'${argument.replace(/[\\']/g, '\\$&').replace(DECEPTIVE, escaped)}'`;
}
const commandLine = words => words.map(quoted).join(' ');

