// Bundles the page into a folder: node build.mjs FOLDER [--cpp FILE]. With --cpp, the files' bytes also go into a C++
// source behind PageFiles.h. With --test, bundles the unit tests instead.
import { build } from 'esbuild';
import { copyFileSync, mkdirSync, readdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const root = dirname(fileURLToPath(import.meta.url));
const [folder, option, cppFile] = process.argv.slice(2);
if (!folder || folder.startsWith('--')) throw new Error('usage: node build.mjs FOLDER [--cpp FILE | --test]');
mkdirSync(folder, { recursive: true });

if (option === '--test') {
  const tests = readdirSync(join(root, 'test')).filter((name) => name.endsWith('.test.ts'));
  await build({
    entryPoints: tests.map((name) => join(root, 'test', name)),
    bundle: true,
    platform: 'node',
    format: 'esm',
    outdir: folder,
    outExtension: { '.js': '.mjs' },
    logLevel: 'warning',
  });
} else {
  await build({
    entryPoints: { main: join(root, 'src/main.ts'), 'stream.worker': join(root, 'src/net/stream.worker.ts') },
    bundle: true,
    minify: true,
    format: 'esm',
    target: 'es2022',
    outdir: folder,
    legalComments: 'eof',
    logLevel: 'warning',
  });
  for (const name of ['index.html', 'icon.svg']) copyFileSync(join(root, 'src', name), join(folder, name));
  if (option === '--cpp') writeFileSync(cppFile, cppText());
}

function cppText() {
  const files = [
    ['/', 'text/html; charset=utf-8', 'index.html'],
    ['/main.js', 'text/javascript; charset=utf-8', 'main.js'],
    ['/main.css', 'text/css; charset=utf-8', 'main.css'],
    ['/stream.worker.js', 'text/javascript; charset=utf-8', 'stream.worker.js'],
    ['/icon.svg', 'image/svg+xml', 'icon.svg'],
  ];
  const arrays = files.map(
    ([, , name], k) => `const unsigned char file${k}[] = {${[...readFileSync(join(folder, name))].join()}};`,
  );
  const rows = files.map(
    ([path, type], k) => `    {"${path}", "${type}", {reinterpret_cast<const char*>(file${k}), sizeof file${k}}},`,
  );
  return `// Made by the build.
#include "PageFiles.h"

namespace TarnPage {
namespace {
${arrays.join('\n')}
const PageFile table[] = {
${rows.join('\n')}
};
}  // namespace

std::span<const PageFile> PageFiles() {
    return table;
}
}  // namespace TarnPage
`;
}
