// ruff.js FILE...: lints Python with ruff, which is a package for node here, because Debian 12 has none.
import { readFileSync } from 'node:fs';
import { PositionEncoding, Workspace } from '@astral-sh/ruff-wasm-nodejs';

const options = {
  'line-length': 120,
  'target-version': 'py311',
  // Functions that are made in a loop are called in the same round, and rows of a table may be long.
  lint: {
    select: ['B', 'C4', 'E', 'F', 'I', 'PIE', 'PLE', 'PLW', 'RET', 'UP', 'W'],
    ignore: ['B023', 'B905', 'E501', 'E731'],
    isort: { 'known-first-party': ['browser', 'figures', 'page_case', 'players_test', 'scripted', 'served', 'timeline_test'] },
  },
};

const workspace = new Workspace(options, PositionEncoding.Utf16);
for (const file of process.argv.slice(2)) {
  for (const found of workspace.check(readFileSync(file, 'utf8'))) {
    console.log(`${file}:${found.start_location.row}:${found.start_location.column}: ${found.code} ${found.message}`);
    process.exitCode = 1;
  }
}
