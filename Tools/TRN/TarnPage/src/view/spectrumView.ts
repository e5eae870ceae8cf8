// The main view: the settings of the traces in words, the plots, and the waterfall under the same axis.
import { nearestBin } from '../model/axis';
import { Model } from '../model/model';
import { dbm, since } from '../model/text';
import { traceTitles } from '../model/traces';
import { el, offer } from './dom';
import { SpectrumPlot } from './spectrum';
import { Waterfall } from './waterfall';

export class SpectrumView {
  private caption = el('p', { class: 'caption', id: 'caption' });
  private cursor = el('p', { class: 'caption', id: 'cursor_readout' }, '');
  private plots: SpectrumPlot[] = [];
  private places = el('div', { class: 'plots' });
  private waterfall: Waterfall;
  private border = el('div', {
    class: 'border',
    role: 'separator',
    tabindex: 0,
    'aria-orientation': 'horizontal',
    'aria-label': 'Height of the waterfall',
  });
  private layout = '';
  private chain: HTMLSelectElement;
  private arrangement: HTMLSelectElement;
  readonly root: HTMLElement;

  constructor(private model: Model) {
    this.waterfall = new Waterfall(model);
    this.chain = el('select', {
      'aria-label': 'Chain of the waterfall',
      onchange: () => {
        model.view.waterfallChain = Number(this.chain.value);
        model.tell('view');
      },
    });
    this.arrangement = el('select', {
      'aria-label': 'Both chains',
      onchange: () => {
        model.view.chainLayout = this.arrangement.value as 'overlaid';
        model.tell('view');
      },
    });
    const head = el('div', { class: 'head' }, this.cursor, this.arrangement, this.chain);
    this.root = el(
      'div',
      { class: 'view spectrum' },
      this.caption,
      head,
      this.places,
      this.border,
      this.waterfall.root,
    );
    this.dragBorder();
  }

  draw(now_ms: number): void {
    this.arrange();
    const share = this.model.view.waterfallShare;
    this.places.style.flex = String(1 - share);
    this.waterfall.root.style.flex = String(share);
    this.waterfall.root.hidden = share <= 0.02 || !this.model.rings.length;
    this.places.hidden = share >= 0.98;
    this.words(now_ms);
    for (const plot of this.plots) plot.draw();
    this.waterfall.draw(now_ms);
  }

  canvases(): { spectrum: HTMLCanvasElement[]; waterfall: HTMLCanvasElement } {
    return { spectrum: this.plots.map((plot) => plot.canvas()), waterfall: this.waterfall.canvas() };
  }

  /** One plot for both chains, or one for each. */
  private arrange(): void {
    const chains = this.model.traces.chains();
    const apart = this.model.view.chainLayout === 'side by side' && chains.length > 1;
    this.arrangement.hidden = this.chain.hidden = chains.length < 2;
    const layout = `${chains.join()} ${apart}`;
    if (layout === this.layout || !chains.length) return;
    this.layout = layout;
    for (const plot of this.plots) plot.destroy();
    const groups = apart ? chains.map((_, index) => [index]) : [chains.map((_, index) => index)];
    const hosts = groups.map((group) =>
      el('div', {
        class: 'plot',
        role: 'img',
        'aria-label': `Spectrum of chain ${group.map((index) => chains[index]).join(' and ')}`,
      }),
    );
    this.places.replaceChildren(...hosts);
    this.plots = groups.map((group, k) => new SpectrumPlot(hosts[k], this.model, group));
    offer(
      this.chain,
      chains.map((name, index) => ({ value: String(index), label: `waterfall: ${name}` })),
      String(Math.min(this.model.view.waterfallChain, chains.length - 1)),
    );
    this.model.view.waterfallChain = Number(this.chain.value);
    offer(
      this.arrangement,
      ['overlaid', 'side by side'].map((value) => ({ value, label: `chains ${value}` })),
      this.model.view.chainLayout,
    );
  }

  private words(now_ms: number): void {
    const { view, traces } = this.model;
    const facts = traces.frame?.facts;
    const parts = [`Ref ${view.reference_dbm} dBm`, `${view.perDivision_db} dB/div`];
    if (facts?.source) parts.unshift(`CAPTURE ${facts.source}`);
    if (facts) {
      parts.push(`RBW ${facts.rbw_khz} kHz`, `${traces.axis.bins} bins`);
      if (facts.average) parts.push(`average ${facts.averageCount}/${facts.averageTarget} (of dB)`);
      if (facts.maxHold) parts.push(`max hold since ${since(facts.holdSince, now_ms)}`);
      if (traces.chains().length > 1) parts.push(`chain A solid, B dashed`);
    }
    setText(this.caption, parts.join('  ·  '));
    setText(
      this.cursor,
      this.cursorText() || 'Point at the plot to read a bin; drag to zoom, double-click for full width.',
    );
  }

  private cursorText(): string {
    const { traces, cursor_mhz } = this.model;
    if (!Number.isFinite(cursor_mhz) || !traces.axis.bins) return '';
    const bin = nearestBin(traces.axis, cursor_mhz);
    const levels: string[] = [];
    for (const kind of this.model.shownTraces())
      traces.chains().forEach((chain, index) => {
        const level = traces.levels(kind, index)?.[bin];
        if (level !== undefined && Number.isFinite(level)) levels.push(`${traceTitles[kind]} ${chain} ${dbm(level)}`);
      });
    return `${cursor_mhz.toFixed(4)} MHz   ${levels.join('   ')}   dBm/${traces.axis.rbw_khz} kHz`;
  }

  private dragBorder(): void {
    const setShare = (share: number) => {
      this.model.view.waterfallShare = Math.min(1, Math.max(0, share));
      this.model.tell('view');
    };
    this.border.addEventListener('pointerdown', (event) => {
      this.border.setPointerCapture(event.pointerId);
      const move = (moved: PointerEvent) => {
        const top = this.places.hidden
          ? this.border.getBoundingClientRect().top
          : this.places.getBoundingClientRect().top;
        const bottom = this.root.getBoundingClientRect().bottom;
        setShare((bottom - moved.clientY) / Math.max(1, bottom - top));
      };
      this.border.addEventListener('pointermove', move);
      this.border.addEventListener('pointerup', () => this.border.removeEventListener('pointermove', move), {
        once: true,
      });
    });
    this.border.addEventListener('keydown', (event) => {
      const step = { ArrowUp: 0.05, ArrowDown: -0.05 }[event.key];
      if (step === undefined) return;
      event.preventDefault();
      event.stopPropagation();
      setShare(this.model.view.waterfallShare + step);
    });
  }
}

function setText(element: HTMLElement, text: string): void {
  if (element.textContent !== text) element.textContent = text;
}
