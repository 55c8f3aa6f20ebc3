'use strict';

// The run as the page's data tells it. Bytes, sites, labels and strings count from 0, lines, links
// and paths from 1; the trace is that of a trace file, with the tables of each file beside its
// bytes.

// The most bytes of files that are kept once they were shown.
const MOST_KEPT = 64 * 1024 * 1024;

const NEWLINE = 10;

// The bytes of an element with data.
async function inflate(id) {
  const text = atob(document.getElementById(id).textContent);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('deflate'));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

// The value of each digit of base64, by its character.
const DIGITS = new Uint8Array(128);
[...'ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/'].forEach((digit, value) => {
  DIGITS[digit.charCodeAt(0)] = value;
});

// The columns of a table of a trace, given by the bytes of its text.
function columnsOf(table, fields) {
  let numbers = 0;
  for (const digit of table) numbers += DIGITS[digit] < 32;
  const columns = Array.from({length: fields}, () => new Int32Array(numbers / fields));
  const last = new Array(fields).fill(0);
  for (let at = 0, i = 0; i < numbers; ++i) {
    let number = 0;
    for (let scale = 1;; scale *= 32) {
      const digit = DIGITS[table[at++]];
      number += (digit & 31) * scale;
      if (digit < 32) break;
    }
    const field = i % fields;
    last[field] += number % 2 ? -(number - 1) / 2 : number / 2;
    columns[field][(i - field) / fields] = last[field];
  }
  return columns;
}

// How many values of a sorted array are at most `value`.
function countUpTo(sorted, value) {
  let low = 0;
  let high = sorted.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (sorted[middle] <= value)
      low = middle + 1;
    else
      high = middle;
  }
  return low;
}

// The bytes of a file and where they come from.
class Body {
  constructor(run, data) {
    const split = data.indexOf(NEWLINE);
    this.run = run;
    this.bytes = data.subarray(split + 1);
    [this.ends, this.sites, this.links] = columnsOf(data.subarray(0, split), 3);
    let lines = 0;
    for (let at = 0; (at = this.bytes.indexOf(NEWLINE, at) + 1) > 0;) ++lines;
    if (this.bytes.at(-1) !== NEWLINE) ++lines;
    this.lineEnds = new Int32Array(lines).fill(this.bytes.length);
    for (let at = 0, i = 0; (at = this.bytes.indexOf(NEWLINE, at) + 1) > 0; ++i)
      this.lineEnds[i] = at;
  }

  lineAt(byte) {
    return countUpTo(this.lineEnds, byte) + 1;
  }

  beginOf(line) {
    return line > 1 ? this.lineEnds[line - 2] : 0;
  }

  // The text between two bytes, of which at most `most` are shown.
  text(begin, end, most = 1000) {
    const text = new TextDecoder().decode(this.bytes.subarray(begin, Math.min(end, begin + most)));
    return text.replace(/\r?\n$/, '') + (end - begin > most ? '…' : '');
  }

  lineText(line) {
    return this.text(this.beginOf(line), this.lineEnds[line - 1]);
  }

  // The pieces between two bytes: bytes that one site printed on one line of its template.
  * pieces(begin = 0, end = this.bytes.length) {
    for (let i = countUpTo(this.ends, begin); begin < end && i < this.ends.length; ++i) {
      const site = this.run.site(this.sites[i]);
      const stop = Math.min(this.ends[i], end);
      const start = i ? this.ends[i - 1] : 0;
      const first = site.kind === 'text' ? this.lineAt(start) : 0;
      while (begin < stop) {
        const line = this.lineAt(begin);
        const until = first ? Math.min(this.lineEnds[line - 1], stop) : stop;
        const at = site.line + (first ? line - first : 0);
        yield {begin, end: until, on: line, site, line: at, link: this.links[i]};
        begin = until;
      }
    }
  }

  onLine(line) {
    return [...this.pieces(this.beginOf(line), this.lineEnds[line - 1])];
  }

  // The lines that a line of a template, or with 0 any line of it, printed something on.
  linesOf(source, at) {
    const sites = this.run.trace.sites.map((_, number) => this.run.site(number));
    const lines = [];
    let begin = 0;
    let first = 1;
    this.ends.forEach((end, i) => {
      const site = sites[this.sites[i]];
      while (this.lineEnds[first - 1] <= begin) ++first;
      for (let line = first; site.file === source && begin < end;
           begin = this.lineEnds[line++ - 1]) {
        const from = site.line + (site.kind === 'text' ? line - first : 0);
        if ((!at || from === at) && lines.at(-1) !== line) lines.push(line);
      }
      begin = end;
    });
    return lines;
  }
}

// A template or script: its lines, each as pieces of class and text, and what they printed.
class Source {
  constructor(name, pieces) {
    this.name = name;
    this.isRead = pieces !== undefined;
    this.lines = [[]];
    for (const [kind, text] of pieces ?? []) {
      text.split('\n').forEach((part, i) => {
        if (i) this.lines.push([]);
        if (part) this.lines.at(-1).push([kind, part]);
      });
    }
    if (this.lines.at(-1).length === 0) this.lines.pop();
    // By line, the number of lines of outputs that it printed something on.
    this.counts = new Map();
  }

  lineText(line) {
    return (this.lines[line - 1] ?? []).map(([, text]) => text).join('');
  }

  count(line, count) {
    const isBlank = this.isRead && !this.lineText(line).trim();
    if (count || !isBlank) this.counts.set(line, (this.counts.get(line) ?? 0) + count);
  }

  get printed() {
    return [...this.counts.values()].filter((count) => count > 0).length;
  }
}

class Run {
  constructor(head) {
    this.trace = head.trace;
    this.warnings = head.warnings;
    this.seconds = new Map(Object.entries(head.seconds));
    this.files = head.trace.files.map(
        (entry, number) => ({
          ...entry,
          number,
          state: head.states[number],
          spans: entry.spans
                     .map(([kind, name, begin, size]) => ({kind, name, begin, end: begin + size}))
                     .sort((a, b) => a.begin - b.begin || b.end - a.end),
        }));
    this.uses = this.columns(head.uses, 4);
    this.sources = this.makeSources(head);
    this.kept = new Map();
  }

  static async read() {
    return new Run(JSON.parse(new TextDecoder().decode(await inflate('run'))));
  }

  columns(table, fields) {
    return columnsOf(new TextEncoder().encode(table), fields);
  }

  makeSources(head) {
    const names = new Set(this.trace.sites.map(([, file]) => this.trace.strings[file]));
    for (const name of Object.keys(head.seconds)) names.add(name);
    names.delete('');
    const sources = new Map();
    for (const name of [...names].sort()) sources.set(name, new Source(name, head.sources[name]));
    const [, strings, lines, counts] = this.uses;
    counts.forEach((count, i) => {
      sources.get(this.trace.strings[strings[i]])?.count(lines[i], count);
    });
    return sources;
  }

  site(number) {
    const [kind, file, line] = this.trace.sites[number];
    return {kind: this.trace.kinds[kind], file: this.trace.strings[file], line};
  }

  // How a piece came to be printed, outermost link first.
  chain(link) {
    this.links ??= this.columns(this.trace.links, 4);
    const [parents, sites, labels, paths] = this.links;
    const chain = [];
    for (; link; link = parents[link - 1]) {
      const [kind, name] = this.trace.labels[labels[link - 1]].map((i) => this.trace.strings[i]);
      const element = paths[link - 1] ? this.element(paths[link - 1]) : null;
      chain.unshift({kind, name, site: this.site(sites[link - 1]), element});
    }
    return chain;
  }

  // A value of the model.
  element(number) {
    this.paths ??= this.columns(this.trace.paths, 5);
    const [parents, texts, positions, files, lines] = this.paths;
    let path = '';
    for (let at = number; at; at = parents[at - 1]) {
      const text = this.trace.strings[texts[at - 1]];
      const step = texts[at - 1] ? text : `[${positions[at - 1]}]`;
      const isFirst = parents[at - 1] === 0;
      path = (isFirst || /^[[/]/.test(step) ? step : `.${step}`) + path;
    }
    return {path, file: this.trace.strings[files[number - 1]], line: lines[number - 1]};
  }

  // The name of a source without the folder that all are in.
  shortName(name) {
    const [first, last] = [[...this.sources.keys()].at(0), [...this.sources.keys()].at(-1)];
    let same = 0;
    while (same < first.length && first[same] === last[same]) ++same;
    return name.slice(first.lastIndexOf('/', same - 1) + 1);
  }

  fileOf(path) {
    this.byPath ??= new Map(this.files.map((file) => [wellFormed(file.path), file]));
    return this.byPath.get(path);
  }

  sourceOf(name) {
    this.byName ??=
        new Map([...this.sources.values()].map((source) => [wellFormed(source.name), source]));
    return this.byName.get(name);
  }

  // The files that a line of a template, or with 0 any line of it, printed on, with the counts.
  filesOf(source, line) {
    const [files, strings, lines, counts] = this.uses;
    const number = this.trace.strings.indexOf(source);
    const found = new Map();
    counts.forEach((count, i) => {
      if (!count || strings[i] !== number || (line && lines[i] !== line)) return;
      found.set(files[i], (found.get(files[i]) ?? 0) + count);
    });
    return [...found].map(([file, count]) => ({file: this.files[file], count}));
  }

  async read(file) {
    return new Body(this, await inflate(`file-${file.number}`));
  }

  // The body of a file; those that were shown last are kept.
  async body(file) {
    const body = this.kept.get(file) ?? (await this.read(file));
    this.kept.delete(file);
    this.kept.set(file, body);
    let size = [...this.kept.keys()].reduce((sum, other) => sum + other.size, 0);
    for (const other of this.kept.keys()) {
      if (size <= MOST_KEPT || other === file) break;
      size -= other.size;
      this.kept.delete(other);
    }
    return body;
  }
}

// A name as it can be in an address.
function wellFormed(name) {
  return name.toWellFormed();
}
