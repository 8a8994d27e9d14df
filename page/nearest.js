// @ts-check
const MOST_EDITS = 2;
const MOST_CHARACTERS = 100;

// How many characters have to be put in, taken out or replaced.
function edits(one, other) {
  let row = Array.from({ length: other.length + 1 }, (_, at) => at);
  for (let at = 1; at <= one.length; at += 1) {
    const next = [at];
    for (let to = 1; to <= other.length; to += 1) next.push(Math.min(next[to - 1] + 1, row[to] + 1, row[to - 1] + Number(one[at - 1] !== other[to - 1])));
    row = next;
  }
  return row[other.length];
}

// The word that is probably meant, letter case aside; an empty text for none.
export function nearest(word, words) {
  const near = words.filter(each => Math.abs(each.length - word.length) <= MOST_EDITS && each.length < MOST_CHARACTERS)
    .map(each => ({ each, far: each.toLowerCase() === word.toLowerCase() ? 0 : edits(word, each) })).filter(({ far }) => far <= MOST_EDITS);
  return near.sort((a, b) => a.far - b.far)[0]?.each || '';
}
