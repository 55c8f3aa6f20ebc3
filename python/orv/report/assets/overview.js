// The run at a glance: its files with the sizes of their sections, templates, scripts, warnings.

const ORDERS = {
  size: (a, b) => b.size - a.size,
  name: (a, b) => (a.path < b.path ? -1 : 1),
  state: (a, b) => a.state.localeCompare(b.state) || b.size - a.size,
};

const WARNING_PLACE = /^([^\n:]+):(\d+)(?::\d+)?: /;

function sectionSizes(file) {
  const sizes = new Map();
  for (const span of file.spans) {
    if (span.kind !== 'section') continue;
    sizes.set(span.name, (sizes.get(span.name) ?? 0) + span.end - span.begin);
  }
  return sizes;
}

class Overview {
  constructor(page) {
    this.page = page;
    this.run = page.run;
    this.countSections();
    this.files = new VirtualList('Files');
    this.order = element(
        'select', {id: 'order'},
        ...Object.keys(ORDERS).map((name) => element('option', {value: name}, name)));
    this.order.addEventListener('change', () => this.sort());
    this.element = element(
        'div', {class: 'view'}, this.summary(), this.legend(),
        element('p', {}, element('label', { for: 'order'
                }, 'Files by '), this.order), this.files.element);
    this.nav = element('div', {class: 'view'}, ...this.sourceList(), ...this.warningList());
    this.sort();
  }

  get focus() {
    return this.files.element;
  }

  countSections() {
    const totals = new Map();
    for (const file of this.run.files) {
      for (const [name, size] of sectionSizes(file))
        totals.set(name, (totals.get(name) ?? 0) + size);
    }
    this.sections = [...totals].sort((a, b) => b[1] - a[1]).map(([name]) => name);
  }

  summary() {
    const run = this.run;
    const size = run.files.reduce((sum, file) => sum + file.size, 0);
    const facts = [
      [run.files.length.toLocaleString('en'), 'files'],
      [shownSize(size), 'in all'],
      ...['new', 'changed', 'same', 'edited', 'foreign']
          .map(
              (state) =>
                  [run.files.filter((file) => file.state === state).length,
                   state,
    ]).filter(([count, state]) => count || state === 'new'),
      [run.sources.size, 'templates and scripts'],
      [
        shownSeconds([...run.seconds.values()].reduce((sum, time) => sum + time, 0)),
        'spent in them'
      ],
      [run.warnings.length, 'warnings'],
    ];
    return element(
        'dl', {class: 'facts'},
        ...facts.map(
            ([value, name]) =>
                element('div', {}, element('dd', {}, String(value)), element('dt', {}, name))));
  }

  legend() {
    return element(
        'ul', {class: 'legend', 'aria-label': 'Colours of sections'},
        ...[...this.sections.entries()].map(
            ([i, name]) => element('li', {}, this.swatch(colour(i)), name)),
        element('li', {}, this.swatch('var(--area-rest)'), 'guards and others'));
  }

  swatch(background) {
    const swatch = element('span', {class: 'swatch', 'aria-hidden': 'true'});
    swatch.style.background = background;
    return swatch;
  }

  sort() {
    const files = [...this.run.files].sort(ORDERS[this.order.value]);
    const largest = Math.max(1, ...files.map((file) => file.size));
    this.files.set({
      count: files.length,
      fill: (row, i) => row.append(
          element('span', {class: `state ${files[i].state}`}, files[i].state),
          element('span', {class: 'grow'}, files[i].path),
          this.bar(files[i], largest),
          element('span', {class: 'number'}, shownSize(files[i].size)),
          ),
      choose: (i) => this.page.go({file: files[i].path, line: 1}),
    });
  }

  bar(file, largest) {
    const sizes = [...sectionSizes(file)].filter(([, size]) => size);
    const bar = element('span', {class: 'bar', title: this.shares(file, sizes)});
    const part = (size, background) => {
      const piece = this.swatch(background);
      piece.style.width = `${(100 * size) / largest}%`;
      bar.append(piece);
    };
    for (const [name, size] of sizes) part(size, colour(this.sections.indexOf(name)));
    part(file.size - sizes.reduce((sum, [, size]) => sum + size, 0), 'var(--area-rest)');
    return bar;
  }

  shares(file, sizes) {
    return sizes.map(([name, size]) => `${name} ${Math.round((100 * size) / file.size)}%`)
        .join(', ');
  }

  sourceList() {
    const sources = [...this.run.sources.values()];
    const time = (source) => this.run.seconds.get(source.name) ?? 0;
    sources.sort((a, b) => time(b) - time(a));
    const list = new VirtualList('Templates and scripts, with lines that printed and time');
    list.set({
      count: sources.length,
      fill: (row, i) => row.append(
          element(
              'span', {class: 'grow', title: sources[i].name}, this.run.shortName(sources[i].name)),
          element('span', {class: 'number'}, shownCoverage(sources[i])),
          element('span', {class: 'number'}, shownSeconds(time(sources[i]))),
          ),
      choose: (i) => this.page.go({source: sources[i].name}),
    });
    return [element('h2', {}, 'Templates and scripts'), list.element];
  }

  warningList() {
    const warnings = this.run.warnings;
    if (!warnings.length) return [];
    const list = new VirtualList('Warnings');
    list.set({
      count: warnings.length,
      fill: (row, i) =>
          row.append(element('span', {class: 'grow', title: warnings[i]}, warnings[i])),
      choose: (i) => this.follow(warnings[i]),
    });
    return [element('h2', {}, 'Warnings'), list.element];
  }

  follow(warning) {
    const [, name, line] = WARNING_PLACE.exec(warning) ?? [];
    if (this.run.sources.has(name))
      this.page.go({source: name, at: line});
    else
      this.page.say(warning);
  }
}

// How many of a source's lines that could print did.
function shownCoverage(source) {
  return source.counts.size ? `${source.printed}/${source.counts.size}` : '';
}
