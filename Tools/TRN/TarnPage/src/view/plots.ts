// Small plots on a canvas: bars of the histogram, I and Q over time, and the constellation.
import { Range, ticks } from '../model/axis';
import { palette } from './dom';

export interface Area {
  left: number;
  top: number;
  width: number;
  height: number;
}

/** A canvas as large as its element, in CSS pixels, emptied. */
export function fitCanvas(canvas: HTMLCanvasElement): CanvasRenderingContext2D | undefined {
  const width = canvas.clientWidth;
  const height = canvas.clientHeight;
  const context = canvas.getContext('2d');
  if (!context || width < 40 || height < 40) return undefined;
  if (
    canvas.width !== Math.round(width * devicePixelRatio) ||
    canvas.height !== Math.round(height * devicePixelRatio)
  ) {
    canvas.width = Math.round(width * devicePixelRatio);
    canvas.height = Math.round(height * devicePixelRatio);
  }
  context.setTransform(devicePixelRatio, 0, 0, devicePixelRatio, 0, 0);
  context.fillStyle = palette().back;
  context.fillRect(0, 0, width, height);
  context.font = '12px system-ui, sans-serif';
  return context;
}

/** Grid and numbers around an area; returns the maps from values to CSS pixels. */
export function drawAxes(
  context: CanvasRenderingContext2D,
  area: Area,
  x: Range,
  y: Range,
  titles: { title: string; x: string; y: string },
): { x: (value: number) => number; y: (value: number) => number } {
  const mapX = (value: number) => area.left + ((value - x.low) / (x.high - x.low)) * area.width;
  const mapY = (value: number) => area.top + ((y.high - value) / (y.high - y.low)) * area.height;
  const colours = palette();
  context.strokeStyle = colours.grid;
  context.fillStyle = colours.text;
  context.lineWidth = 1;
  context.textAlign = 'center';
  for (const value of ticks(x, Math.max(2, area.width / 90))) {
    line(context, mapX(value), area.top, mapX(value), area.top + area.height);
    context.fillText(number(value), mapX(value), area.top + area.height + 16);
  }
  context.textAlign = 'right';
  for (const value of ticks(y, Math.max(2, area.height / 40))) {
    line(context, area.left, mapY(value), area.left + area.width, mapY(value));
    context.fillText(number(value), area.left - 6, mapY(value) + 4);
  }
  context.fillText(titles.x, area.left + area.width, area.top + area.height + 32);
  context.textAlign = 'left';
  context.fillText(`${titles.title}   ${titles.y}`, area.left, area.top - 8);
  context.strokeStyle = colours.faint;
  context.strokeRect(area.left, area.top, area.width, area.height);
  return { x: mapX, y: mapY };
}

function number(value: number): string {
  return Math.abs(value) >= 100_000 ? value.toExponential(0) : String(+value.toPrecision(6));
}

function line(context: CanvasRenderingContext2D, x0: number, y0: number, x1: number, y1: number): void {
  context.beginPath();
  context.moveTo(x0, y0);
  context.lineTo(x1, y1);
  context.stroke();
}
