// Beside a file: where a line comes from, and the template with what each of its lines printed.

// The most pieces of a line that are shown; a line of data can have as many as its file has bytes.
const MOST_PIECES = 500;

class OriginView {
  constructor(page) {
    this.page = page;
    this.element = element('section', {class: 'origin', 'aria-label': 'Pieces of the line'});
  }

  show(file, body, line) {
    if (this.file === file && this.line === line) return;
    Object.assign(this, {file, line});
    this.pieces = line <= body.lineEnds.length ? body.onLine(line) : [];
    const items = [];
    let before = '';
    for (const piece of this.pieces.slice(0, MOST_PIECES)) {
      const around = this.around(file, piece);
      const isSame = around.map((item) => item.textContent).join() === before;
      before = around.map((item) => item.textContent).join();
      items.push(element(
          'li', {}, this.piece(body, piece),
          isSame ? '' : element('ul', {class: 'chain'}, ...around)));
    }
    const more = this.pieces.length - items.length;
    this.element.replaceChildren(
        element('h2', {}, `${file.path}:${line}`), element('ol', {class: 'pieces'}, ...items),
        ...(more ? [element('p', {}, `and ${counted(more, 'more piece')}`)] : []));
  }

  piece(body, piece) {
    const text = element('code', {}, body.text(piece.begin, piece.end, 120) || '\u23ce');
    return element(
        'p', {}, text, ` ${piece.site.kind} `, this.place({...piece.site, line: piece.line}));
  }

  // The spans that the piece is in, and what led to it, the innermost first.
  around(file, piece) {
    const spans = file.spans.filter((span) => span.begin <= piece.begin && piece.begin < span.end);
    const inside = spans.map((span) => `${span.kind} ${span.name}`).join(', ');
    const links = this.page.run.chain(piece.link)
                      .reverse()
                      .map(
                          (link) => element(
                              'li', {}, `${link.kind} ${link.name} `, ...this.value(link.element),
                              this.place(link.site)));
    return [...(inside ? [element('li', {}, `in ${inside}`)] : []), ...links];
  }

  value(found) {
    if (!found) return [];
    return [element('b', {}, found.path), found.file ? ` (${shownPlace(found)}) ` : ' '];
  }

  // A link to a line of a template, if there is one.
  place(site) {
    if (!this.page.run.sources.has(site.file)) return shownPlace(site);
    const state = {...this.page.state, source: site.file, at: site.line || undefined};
    return element('a', {href: this.page.address(state)}, shownPlace(site));
  }
}

class SourceView {
  constructor(page) {
    this.page = page;
    this.run = page.run;
    this.heading = element('h2');
    this.facts = element('p');
    this.lines =
        new VirtualList('Lines of the template, with the lines that each printed', {code: true});
    this.usesHeading = element('h2');
    this.uses = new VirtualList('Files with what the line printed');
    this.uses.element.classList.add('short');
    this.element = element(
        'section', {class: 'view', 'aria-label': 'Template'}, this.heading, this.facts,
        this.lines.element, this.usesHeading, this.uses.element);
  }

  // Shows the line `at` of a source; `lit` are lines that what is selected beside it came from.
  show(source, at, lit) {
    if (this.source !== source) this.open(source);
    this.isLit = new Set(lit);
    this.lines.selected = (at ?? 0) - 1;
    this.lines.show((at ?? lit[0] ?? 1) - 1);
    this.lines.draw();
    this.showUses(source, at ?? 0);
  }

  open(source) {
    this.source = source;
    this.heading.textContent = source.name;
    const time = this.run.seconds.get(source.name);
    this.facts.textContent = [
      ...(source.isRead ? [] : ['its text could not be read']),
      ...(source.counts.size ? [`${shownCoverage(source)} lines printed something`] : []),
      ...(time === undefined ? [] : [shownSeconds(time)]),
    ].join(', ');
    this.lines.set({
      count: source.lines.length,
      fill: (row, i) => this.fill(row, i + 1),
      choose: (i) => this.page.go({...this.page.state, source: source.name, at: i + 1}),
    });
  }

  fill(row, line) {
    const count = this.source.counts.get(line);
    const shown = count === undefined ? '' : count ? `×${count.toLocaleString('en')}` : 'never';
    if (count === 0) row.classList.add('never');
    if (this.isLit?.has(line)) row.classList.add('lit');
    row.append(
        element('span', {class: 'line'}, String(line)),
        element('span', {class: 'count'}, shown),
        ...painted(this.source.lines[line - 1]),
    );
  }

  showUses(source, at) {
    const uses = this.run.filesOf(source.name, at);
    const total = uses.reduce((sum, use) => sum + use.count, 0);
    const what = at ? `Line ${at}` : 'All lines';
    this.usesHeading.textContent =
        `${what} printed on ${counted(total, 'line')} of ${counted(uses.length, 'file')}`;
    this.uses.set({
      count: uses.length,
      fill: (row, i) => row.append(
          element('span', {class: 'grow'}, uses[i].file.path),
          element('span', {class: 'number'}, `×${uses[i].count.toLocaleString('en')}`),
          ),
      choose: (i) => this.openUse(uses[i].file, source.name, at),
    });
  }

  async openUse(file, source, at) {
    const [line] = (await this.run.body(file)).linesOf(source, at);
    this.page.go({file: file.path, line, source, at: at || undefined});
  }
}
