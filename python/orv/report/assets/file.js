// A file of the run: its lines with the colours of their origins, its outline and its includes.

class FileView {
  constructor(page) {
    this.page = page;
    this.run = page.run;
    this.heading = element('h2');
    this.lit = element('span', {role: 'status'});
    this.steps = element(
        'p', {class: 'steps'}, this.lit, this.button('Previous', -1, 'p'),
        this.button('Next', 1, 'n'));
    this.lines = new VirtualList('Lines', {follows: true, code: true});
    this.lines.element.addEventListener('keydown', ({key}) => {
      if (key === 'n' || key === 'p') this.step(key === 'n' ? 1 : -1);
    });
    this.element = element('div', {class: 'view'}, this.heading, this.steps, this.lines.element);
    this.outline = new VirtualList('Outline');
    this.includes = new VirtualList('Includes, with who asked for each');
    this.nav = element(
        'div', {class: 'view'}, element('p', {}, element('a', {href: '#'}, 'All files')),
        element('h2', {}, 'Outline'), this.outline.element, element('h2', {}, 'Includes'),
        this.includes.element);
    this.litLines = [];
  }

  get focus() {
    return this.lines.element;
  }

  button(name, step, key) {
    const button =
        element('button', {type: 'button', 'aria-keyshortcuts': key, title: `Key ${key}`}, name);
    button.addEventListener('click', () => this.step(step));
    return button;
  }

  // Shows a line of a file, and lights up what the line `at` of a source printed.
  show(file, body, line, source, at) {
    if (this.body !== body) this.open(file, body);
    this.litLines = source ? body.linesOf(source, at) : [];
    this.isLit = new Set(this.litLines);
    this.steps.hidden = !source;
    this.lit.textContent =
        `${counted(this.litLines.length, 'line')} of ${at ? `${source}:${at}` : source} `;
    this.lines.selected = line - 1;
    this.lines.show(line - 1);
    this.lines.draw();
  }

  open(file, body) {
    this.body = body;
    this.heading.textContent =
        `${file.path} (${file.state}, ${counted(body.lineEnds.length, 'line')})`;
    const isC = C_FILE.test(file.path);
    this.lines.set({
      count: body.lineEnds.length,
      fill: (row, i) => this.fill(row, i + 1, isC),
      choose: (i, isMove) => this.page.go({file: file.path, line: i + 1}, isMove),
    });
    this.setOutline(file);
    this.setIncludes(file);
  }

  fill(row, line, isC) {
    const body = this.body;
    const begin = body.beginOf(line);
    const text = body.lineText(line);
    const names = [...new Set(body.onLine(line).map((piece) => piece.site.file))];
    if (this.isLit?.has(line)) row.classList.add('lit');
    row.append(
        element('span', {class: 'line'}, String(line)),
        this.gutter(names),
        ...(isC ? painted(paintedC(text, isInComment(body, begin))) : [text]),
    );
  }

  gutter(names) {
    const sources = [...this.run.sources.keys()];
    const gutter = element('span', {class: 'gutter', title: names.filter(Boolean).join(', ')});
    for (const name of names) {
      const part = element('span', {'aria-hidden': 'true'});
      part.style.background = name ? colour(sources.indexOf(name)) : 'var(--area-rest)';
      gutter.append(part);
    }
    return gutter;
  }

  setOutline(file) {
    const around = [];
    const depths = file.spans.map((span) => {
      while (around.length && around.at(-1).end <= span.begin) around.pop();
      return around.push(span) - 1;
    });
    this.outline.set({
      count: file.spans.length,
      fill: (row, i) => {
        row.style.paddingInlineStart = `${0.5 + depths[i]}em`;
        const {kind, name} = file.spans[i];
        row.append(element('span', {class: 'grow'}, name), element('span', {class: 'kind'}, kind));
      },
      choose: (i) => this.page.go({file: file.path, line: this.body.lineAt(file.spans[i].begin)}),
    });
  }

  setIncludes(file) {
    const kind = this.run.trace.kinds.indexOf('include');
    const isInclude = this.run.trace.sites.map((site) => site[0] === kind);
    const found = [...this.body.sites.keys()].filter((i) => isInclude[this.body.sites[i]]);
    const begins = found.map((i) => (i ? this.body.ends[i - 1] : 0));
    // The first has the blank line before it.
    const lines = found.map((i) => this.body.lineAt(this.body.ends[i] - 1));
    this.includes.set({
      count: found.length,
      fill: (row, i) => row.append(
          element(
              'span', {class: 'grow'}, this.body.text(begins[i], this.body.ends[found[i]]).trim()),
          element('span', {class: 'path'}, this.asker(this.run.site(this.body.sites[found[i]]))),
          ),
      choose: (i) => this.page.go({file: file.path, line: lines[i]}),
    });
  }

  asker({file, line}) {
    return file ? `${this.run.shortName(file)}:${line}` : '';
  }

  // Goes to the next line that is lit, or the one before.
  step(by) {
    const {line, source, at} = this.page.state;
    const lines = by > 0 ? this.litLines : [...this.litLines].reverse();
    const next = lines.find((other) => (other - line) * by > 0) ?? lines[0];
    if (next) this.page.go({...this.page.state, line: next, source, at});
  }
}
