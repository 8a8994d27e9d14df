// @ts-check
const MOST_CELLS = 250000;

const marked = (mark, lines) => lines.map(line => [mark, line]);

// The longest common lines, by the table of all beginnings.
function compared(before, after) {
  const width = after.length + 1;
  const table = new Uint32Array((before.length + 1) * width);
  for (let row = before.length - 1; row >= 0; row -= 1) {
    for (let column = after.length - 1; column >= 0; column -= 1) {
      const at = row * width + column;
      table[at] = before[row] === after[column] ? table[at + width + 1] + 1 : Math.max(table[at + width], table[at + 1]);
    }
  }
  const out = [];
  for (let row = 0, column = 0; row < before.length || column < after.length;) {
    const at = row * width + column;
    if (row < before.length && column < after.length && before[row] === after[column]) {
      out.push([' ', before[row]]);
      [row, column] = [row + 1, column + 1];
    } else if (column === after.length || (row < before.length && table[at + width] >= table[at + 1])) out.push(['-', before[row++]]);
    else out.push(['+', after[column++]]);
  }
  return out;
}

// What has changed from one list of lines to another: [' ' or '-' or '+', line].
export function difference(before, after) {
  let head = 0;
  while (head < before.length && head < after.length && before[head] === after[head]) head += 1;
  let tail = 0;
  while (tail < Math.min(before.length, after.length) - head && before.at(-1 - tail) === after.at(-1 - tail)) tail += 1;
  const [old, now] = [before.slice(head, before.length - tail), after.slice(head, after.length - tail)];
  const middle = old.length * now.length > MOST_CELLS ? [...marked('-', old), ...marked('+', now)] : compared(old, now);
  return [...marked(' ', before.slice(0, head)), ...middle, ...marked(' ', before.slice(before.length - tail))];
}
