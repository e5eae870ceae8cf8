// The levels behind the waterfall: a ring of rows, so that another reference level repaints what was measured.

export class LevelRing {
  private rows: Float32Array;
  private times: Float64Array;
  private next = 0;
  private count = 0;
  /** Rows ever pushed. */
  total = 0;

  /** @param bins levels of a row; @param capacity rows that are kept */
  constructor(
    readonly bins: number,
    readonly capacity: number,
  ) {
    this.rows = new Float32Array(bins * capacity);
    this.times = new Float64Array(capacity);
  }

  get length(): number {
    return this.count;
  }

  /** @param time_ms UTC in milliseconds; rows of another length than `bins` are a caller's bug */
  push(levels: ArrayLike<number>, time_ms: number): void {
    this.rows.set(levels as Float32Array, this.next * this.bins);
    this.times[this.next] = time_ms;
    this.next = (this.next + 1) % this.capacity;
    this.count = Math.min(this.count + 1, this.capacity);
    ++this.total;
  }

  /** Age 0 is the newest row. The view stays valid until the row is overwritten. */
  row(age: number): Float32Array {
    const at = this.place(age);
    return this.rows.subarray(at * this.bins, (at + 1) * this.bins);
  }

  time(age: number): number {
    return this.times[this.place(age)];
  }

  private place(age: number): number {
    return (this.next - 1 - age + 2 * this.capacity) % this.capacity;
  }
}
