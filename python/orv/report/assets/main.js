// The page: what it shows is told by its address, #file=..&line=..&source=..&at=..&search=..

const NUMBERS = ['line', 'at'];

class Page {
  constructor(run) {
    this.run = run;
    this.nav = document.getElementById('nav');
    this.main = document.getElementById('main');
    this.aside = document.getElementById('aside');
    this.query = document.getElementById('query');
    this.overview = new Overview(this);
    this.fileView = new FileView(this);
    this.origin = new OriginView(this);
    this.sourceView = new SourceView(this);
    this.search = new SearchView(this);
    const title = `Report of ${run.trace.folder}`;
    document.title = title;
    document.getElementById('title').textContent = title;
    this.listen();
  }

  listen() {
    addEventListener('hashchange', () => this.show());
    this.query.form.addEventListener('submit', (event) => {
      event.preventDefault();
      this.go(this.query.value.trim() ? {search: this.query.value.trim()} : {});
    });
    addEventListener('keydown', (event) => {
      if (event.key !== '/' || event.target === this.query) return;
      event.preventDefault();
      this.query.focus();
    });
  }

  say(text) {
    document.getElementById('status').textContent = text;
  }

  address(state) {
    const known = Object.entries(state).filter(([, value]) => value !== undefined);
    return `#${new URLSearchParams(known)}`;
  }

  // Shows a state. The browser's way back leads to the one before unless this one takes its place.
  go(state, replaces = false) {
    if (replaces)
      location.replace(this.address(state));
    else
      location.hash = this.address(state);
  }

  // What the address says, as far as the run has it.
  read() {
    const state = Object.fromEntries(new URLSearchParams(location.hash.slice(1)));
    for (const name of NUMBERS) {
      const number = Number.parseInt(state[name], 10);
      state[name] = number > 0 ? number : undefined;
    }
    return state;
  }

  async show() {
    const state = (this.state = this.read());
    const file = state.file === undefined ? undefined : this.run.fileOf(state.file);
    const source = state.source === undefined ? undefined : this.run.sourceOf(state.source);
    const missing = [
      ...(state.file !== undefined && !file ? [`The run has no file ${state.file}`] : []),
      ...(state.source !== undefined && !source ? [`The run has no template ${state.source}`] : []),
    ].join('. ');
    this.say(missing);
    if (state.search === undefined) this.search.stop();
    if (file)
      await this.showFile(state, file, source, missing);
    else
      this.showOthers(state, source);
  }

  // Shows a file, and says `missing` once it is there.
  async showFile(state, file, source, missing) {
    this.say('Loading');
    const body = await this.run.body(file);
    if (this.state !== state) return;
    const line = Math.min(state.line ?? 1, Math.max(1, body.lineEnds.length));
    this.put(this.fileView);
    this.origin.show(file, body, line);
    const printed = this.origin.pieces.filter((piece) => this.run.sources.has(piece.site.file));
    const seen = printed.find((piece) => body.text(piece.begin, piece.end).trim()) ?? printed[0];
    const shown = source ?? this.run.sources.get(seen?.site.file);
    setChildren(this.aside, this.origin.element, ...(shown ? [this.sourceView.element] : []));
    this.aside.hidden = false;
    this.fileView.show(file, body, line, source?.name, state.at);
    if (shown) {
      const lit =
          printed.filter((piece) => piece.site.file === shown.name).map((piece) => piece.line);
      this.sourceView.show(shown, source ? state.at : seen.line || undefined, lit);
    }
    this.say(missing);
  }

  showOthers(state, source) {
    if (state.search !== undefined) {
      this.query.value = state.search;
      this.put(this.search);
      this.search.show(state.search);
    } else {
      this.put(this.overview);
    }
    this.aside.hidden = !source;
    if (source) {
      setChildren(this.aside, this.sourceView.element);
      this.sourceView.show(source, state.at, []);
    }
  }

  // Shows a view in place of another, as it was left; the first leaves the focus where it is.
  put(view) {
    const left = this.view;
    if (left === view) return;
    if (left) left.scrolled = left.focus.scrollTop;
    this.view = view;
    this.main.replaceChildren(view.element);
    setChildren(this.nav, view.nav ?? this.overview.nav);
    view.focus.scrollTop = view.scrolled ?? 0;
    if (left) view.focus.focus({preventScroll: true});
  }
}

Run.read().then((run) => new Page(run).show(), (error) => {
  document.getElementById('status').textContent = `The report cannot be read: ${error.message}`;
});
