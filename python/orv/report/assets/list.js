// Elements, and lists that have elements only for what is in view.

// An element with attributes and children; texts are never HTML.
function element(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
  made.append(...children);
  return made;
}

// Gives an element these children. A child put in anew loses focus and scrolling, so those that are
// there already stay.
function setChildren(parent, ...children) {
  const same = children.every((child, i) => child === parent.children[i]);
  if (!same || parent.children.length !== children.length) parent.replaceChildren(...children);
}

// Pieces of class and text as elements.
function painted(pieces) {
  return pieces.map(([kind, text]) => (kind ? element('span', {class: kind}, text) : text));
}

const ROW = 20;
// Browsers bound the height of elements; longer lists scroll faster.
const HIGHEST = 8_000_000;

// A list box. `fill(row, index)` makes the contents of a row; `choose(index)` is called for a row
// that is clicked, for Enter, and if `follows` with true when keys move the selection.
class VirtualList {
  static made = 0;

  constructor(label, {follows = false, code = false} = {}) {
    this.name = `list-${VirtualList.made++}`;
    this.follows = follows;
    this.rows = element('div', {class: 'rows', role: 'presentation'});
    this.space = element('div', {role: 'presentation'}, this.rows);
    this.element = element(
        'div', {
          class: code ? 'list code' : 'list',
          role: 'listbox',
          tabindex: '0',
          'aria-label': label,
        },
        this.space);
    this.element.addEventListener('scroll', () => requestAnimationFrame(() => this.draw()));
    this.element.addEventListener('keydown', (event) => this.pressed(event));
    this.element.addEventListener('click', (event) => this.clicked(event));
    new ResizeObserver(() => this.set(this)).observe(this.element);
    this.set({count: 0, fill: () => {}, choose: () => {}});
  }

  set({count, fill, choose, selected = -1}) {
    Object.assign(this, {count, fill, choose, selected});
    this.space.style.height = `${Math.min(count * ROW, HIGHEST)}px`;
    this.rows.style.height = `${Math.min(count * ROW, this.element.clientHeight)}px`;
    this.draw();
  }

  // The pixels that can be scrolled, of the list as it is and as it would be without a bound.
  get ranges() {
    const height = this.element.clientHeight;
    return [Math.min(this.count * ROW, HIGHEST) - height, this.count * ROW - height];
  }

  // The first row in view, with a fraction.
  get top() {
    const [range, whole] = this.ranges;
    return range > 0 ? ((this.element.scrollTop / range) * whole) / ROW : 0;
  }

  draw() {
    const first = Math.floor(this.top);
    const last = Math.min(this.count, first + Math.ceil(this.element.clientHeight / ROW) + 1);
    const rows = [];
    for (let index = first; index < last; ++index) {
      const row = element('div', {
        class: 'row',
        role: 'option',
        id: `${this.name}-${index}`,
        'aria-posinset': index + 1,
        'aria-setsize': this.count,
        'aria-selected': index === this.selected,
      });
      row.style.top = `${(index - this.top) * ROW}px`;
      this.fill(row, index);
      rows.push(row);
    }
    this.rows.replaceChildren(...rows);
    const isShown = first <= this.selected && this.selected < last;
    if (isShown)
      this.element.setAttribute('aria-activedescendant', `${this.name}-${this.selected}`);
    else
      this.element.removeAttribute('aria-activedescendant');
  }

  select(index) {
    this.selected = Math.max(0, Math.min(this.count - 1, index));
    const visible = Math.floor(this.element.clientHeight / ROW);
    if (this.selected < this.top) this.scrollTo(this.selected);
    if (this.selected > this.top + visible - 1) this.scrollTo(this.selected - visible + 1);
    this.draw();
  }

  // Brings a row into the middle, unless it is in view.
  show(index) {
    const visible = this.element.clientHeight / ROW;
    if (index >= this.top && index <= this.top + visible - 1) return;
    this.scrollTo(index - Math.floor(visible / 2));
    this.draw();
  }

  scrollTo(index) {
    const [range, whole] = this.ranges;
    this.element.scrollTop = whole > 0 ? ((index * ROW) / whole) * range : 0;
  }

  pressed(event) {
    const page = Math.floor(this.element.clientHeight / ROW) - 1;
    const steps =
        {ArrowUp: -1, ArrowDown: 1, PageUp: -page, PageDown: page, Home: -Infinity, End: Infinity};
    if (event.altKey || event.ctrlKey || event.metaKey || !this.count) return;
    if (event.key in steps) {
      this.select(this.selected + steps[event.key]);
      if (this.follows) this.choose(this.selected, true);
    } else if (event.key === 'Enter' && this.selected >= 0) {
      this.choose(this.selected);
    } else {
      return;
    }
    event.preventDefault();
  }

  clicked(event) {
    const row = event.target.closest('[role=option]');
    // Text is being marked, to be copied.
    if (!row || getSelection().type === 'Range') return;
    this.select(Number(row.id.slice(this.name.length + 1)));
    this.choose(this.selected);
  }
}
