// The command language as the page needs it: completion, and the lines that the controls send.

export interface KeyRow {
  name: string;
  argument: 'none' | 'int' | 'double' | 'text';
  placeholder: string;
  values: string[];
  group: string;
  help: string;
}

/** The token under the end of a line, and what stands before it. */
function lastToken(line: string): { before: string; token: string } {
  const start = Math.max(line.lastIndexOf(' '), line.lastIndexOf('\t')) + 1;
  return { before: line.slice(0, start), token: line.slice(start) };
}

export interface Completion {
  line: string;
  label: string;
  help: string;
}

/** What the line could go on with: values of the key before the last token, or keys that begin with it. */
export function completions(line: string, keys: KeyRow[]): Completion[] {
  const { before, token } = lastToken(line);
  const previous = before.trim().split(/\s+/).at(-1)?.toLowerCase() ?? '';
  const key = keys.find((row) => row.name.toLowerCase() === previous);
  if (key && key.argument !== 'none')
    return key.values
      .filter((value) => value.startsWith(token))
      .map((value) => ({ line: before + value + ' ', label: value, help: key.help }));
  const wanted = token.toLowerCase();
  if (!wanted) return [];
  return keys
    .filter((row) => row.name.toLowerCase().startsWith(wanted))
    .map((row) => ({ line: before + row.name + ' ', label: `${row.name} ${row.placeholder}`.trim(), help: row.help }));
}

/** One token of a line: quoted when it holds a blank. Double quotes can't be said and are dropped. */
export function quoteToken(text: string): string {
  const clean = text.replaceAll('"', '');
  return /\s/.test(clean) ? `"${clean}"` : clean;
}

/** "-key value -key value" out of pairs; a pair without a value is the key alone. */
export function lineOf(pairs: [string, string?][]): string {
  return pairs.map(([key, value]) => (value === undefined ? key : `${key} ${quoteToken(value)}`)).join(' ');
}

/** Starts max hold and average again. Max hold is cleared by switching it off and on. */
export function clearHoldsLine(settings: Record<string, string>): string {
  const parts: [string, string?][] = [];
  if (settings['-maxhold'] === 'true') parts.push(['-maxhold', 'false'], ['-maxhold', 'true']);
  parts.push(['-clear_average']);
  return lineOf(parts);
}
