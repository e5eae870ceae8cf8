// Colours of levels: dark blue through grey to yellow, rising evenly in lightness, told apart by colour-blind eyes.

const anchors = [
  [0, 32, 77],
  [0, 42, 104],
  [16, 53, 111],
  [44, 64, 109],
  [62, 75, 108],
  [78, 87, 109],
  [92, 98, 112],
  [106, 109, 116],
  [120, 121, 120],
  [136, 133, 120],
  [152, 146, 118],
  [169, 159, 113],
  [187, 173, 105],
  [205, 187, 94],
  [223, 202, 78],
  [242, 218, 58],
  [255, 234, 70],
];

/** 256 colours as 0xAABBGGRR, for an ImageData seen as 32-bit words on a little-endian machine. */
export const colourTable: Uint32Array = makeTable();

function makeTable(): Uint32Array {
  const table = new Uint32Array(256);
  for (let k = 0; k < 256; ++k) {
    const place = (k / 255) * (anchors.length - 1);
    const low = Math.min(anchors.length - 2, Math.floor(place));
    const part = place - low;
    const [red, green, blue] = anchors[low].map((from, c) => Math.round(from + part * (anchors[low + 1][c] - from)));
    table[k] = (0xff000000 | (blue << 16) | (green << 8) | red) >>> 0;
  }
  return table;
}

/** Index into the table for a level between two others; what lies outside takes the end's colour. */
export function colourIndex(level: number, low: number, high: number): number {
  const index = Math.round(((level - low) / (high - low)) * 255);
  return index > 0 ? Math.min(255, index) : 0;
}

export function colourText(index: number): string {
  const word = colourTable[index];
  return `rgb(${word & 255},${(word >> 8) & 255},${(word >> 16) & 255})`;
}
