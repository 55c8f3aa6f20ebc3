// How texts and numbers are shown, and the colours of C.

const KEYWORDS =
    'auto|bool|break|case|char|class|const|continue|default|do|double|else|enum|extern|false|' +
    'float|for|goto|if|inline|int|long|namespace|register|restrict|return|short|signed|sizeof|' +
    'static|struct|switch|' +
    'template|true|typedef|union|unsigned|using|void|volatile|while|_Bool|_Complex|_Static_assert';
const TOKENS = new RegExp(
    '(?<comment>/\\*.*?(?:\\*/|$)|//.*)|' +
        '(?<directive>^\\s*#\\s*\\w+)|' +
        '(?<string>"(?:\\\\.|[^"\\\\])*"?|\'(?:\\\\.|[^\'\\\\])*\'?)|' +
        '(?<number>\\b(?:0[xX][\\da-fA-F]+|\\d[\\d.]*(?:[eE][-+]?\\d+)?)[uUlLfF]*\\b)|' +
        `\\b(?<keyword>${KEYWORDS})\\b`,
    'g',
);
const C_FILE = /\.(c|h|cc|cpp|cxx|hh|hpp|hxx|inc)$/i;
// How far before a line the beginning of a comment is looked for.
const LONGEST_COMMENT = 4096;

// A line of C as pieces of class and text. `isComment` says that it begins within a comment.
function paintedC(text, isComment) {
  const pieces = [];
  let at = 0;
  if (isComment) {
    const end = text.indexOf('*/');
    at = end < 0 ? text.length : end + 2;
    pieces.push(['comment', text.slice(0, at)]);
  }
  TOKENS.lastIndex = at;
  for (let match; at < text.length && (match = TOKENS.exec(text)); at = TOKENS.lastIndex) {
    if (match.index > at) pieces.push(['', text.slice(at, match.index)]);
    pieces.push([Object.keys(match.groups).find((name) => match.groups[name]), match[0]]);
  }
  pieces.push(['', text.slice(at)]);
  return pieces;
}

// Whether a byte is within a comment of C that was opened on a line before.
function isInComment(body, begin) {
  const before = body.text(Math.max(0, begin - LONGEST_COMMENT), begin, LONGEST_COMMENT);
  return before.lastIndexOf('/*') > before.lastIndexOf('*/');
}

function shownSize(bytes) {
  if (bytes < 1000) return `${bytes} B`;
  if (bytes < 1e6) return `${(bytes / 1e3).toFixed(1)} kB`;
  return `${(bytes / 1e6).toFixed(1)} MB`;
}

function shownSeconds(seconds) {
  return seconds < 1 ? `${(seconds * 1e3).toFixed(1)} ms` : `${seconds.toFixed(2)} s`;
}

function counted(count, one, many = `${one}s`) {
  return `${count.toLocaleString('en')} ${count === 1 ? one : many}`;
}

// The colour of an area, the same for the same position; neighbours are far apart.
function colour(position) {
  return `hsl(${(215 + position * 137.5) % 360} 60% ${position % 2 ? 58 : 45}%)`;
}

function shownPlace(place) {
  return place.line ? `${place.file}:${place.line}` : place.file;
}
