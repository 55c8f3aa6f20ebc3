// Search over names and text: of files, their sections and functions, and templates.

const MOST_FOUND = 1000;

class SearchView {
  constructor(page) {
    this.page = page;
    this.run = page.run;
    this.list = new VirtualList('What was found');
    this.element = element('div', {class: 'view'}, element('h2', {}, 'Search'), this.list.element);
    this.found = [];
  }

  get focus() {
    return this.list.element;
  }

  // Shows what is found, as it is found. A later search ends an earlier one.
  async show(query) {
    if (this.query === query) return this.page.say(this.told);
    this.query = query;
    this.isDone = false;
    const wanted = query.toLowerCase();
    this.found = this.names(wanted);
    for (const source of this.run.sources.values()) this.addLines(source, wanted);
    this.draw();
    for (const [number, file] of this.run.files.entries()) {
      if (this.found.length >= MOST_FOUND) break;
      const body = await this.run.read(file);
      if (this.query !== query) return;
      this.addText(file, body, wanted);
      if (number % 50 === 0) this.draw(`, ${number} of ${this.run.files.length} files searched`);
    }
    this.isDone = true;
    return this.draw();
  }

  // Ends a search; what a whole one found is kept for the way back to it.
  stop() {
    if (!this.isDone) this.query = undefined;
  }

  names(wanted) {
    const has = (name) => name.toLowerCase().includes(wanted);
    const found = [];
    for (const file of this.run.files) {
      if (has(file.path))
        found.push({label: file.path, text: 'file', to: {file: file.path, line: 1}});
      for (const span of file.spans.filter((span) => has(span.name))) {
        found.push(
            {label: file.path, text: `${span.kind} ${span.name}`, to: {file: file.path}, span});
      }
    }
    for (const name of this.run.sources.keys()) {
      if (has(name)) found.push({label: name, text: 'template or script', to: {source: name}});
    }
    return found.slice(0, MOST_FOUND);
  }

  addLines(source, wanted) {
    source.lines.forEach((_, i) => {
      const text = source.lineText(i + 1);
      if (!text.toLowerCase().includes(wanted)) return;
      this.add(`${source.name}:${i + 1}`, text, {source: source.name, at: i + 1});
    });
  }

  addText(file, body, wanted) {
    const text = new TextDecoder().decode(body.bytes).toLowerCase();
    let line = 1;
    let at = 0;
    for (let hit = text.indexOf(wanted); hit >= 0 && this.found.length < MOST_FOUND;) {
      for (let end; (end = text.indexOf('\n', at)) >= 0 && end < hit; at = end + 1) ++line;
      this.add(`${file.path}:${line}`, body.lineText(line), {file: file.path, line});
      const next = text.indexOf('\n', hit);
      hit = next < 0 ? -1 : text.indexOf(wanted, next);
    }
  }

  add(label, text, to) {
    if (this.found.length < MOST_FOUND) this.found.push({label, text: text.trim(), to});
  }

  draw(progress = '') {
    const found = this.found;
    const more = found.length >= MOST_FOUND ? ' or more' : '';
    this.told = `${found.length}${more} found${progress}`;
    this.page.say(this.told);
    this.list.set({
      count: found.length,
      fill: (row, i) => row.append(
          element('span', {class: 'path'}, found[i].label), ' ',
          element('code', {}, found[i].text)),
      choose: (i) => this.follow(found[i]),
    });
  }

  async follow({to, span}) {
    if (!span) return this.page.go(to);
    const body = await this.run.body(this.run.fileOf(wellFormed(to.file)));
    return this.page.go({...to, line: body.lineAt(span.begin)});
  }
}
