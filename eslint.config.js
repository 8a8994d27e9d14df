import js from '@eslint/js';
import globals from 'globals';

export default [
  { ignores: ['build/', 'node_modules/'] },
  js.configs.recommended,
  {
    rules: {
      'no-control-regex': 'off',
      'no-shadow': 'error',
      'no-unused-expressions': 'error',
      'no-unused-private-class-members': 'error',
      'no-var': 'error',
      'prefer-const': 'error',
      eqeqeq: 'error',
    },
  },
  { files: ['page/*.js'], languageOptions: { globals: globals.browser } },
  { files: ['tests/page/*.mjs', 'tools/*.js'], languageOptions: { globals: globals.node } },
];
