// The page in a browser, as an engineer would use it: tune, find a tone, hold, average, save, come back tomorrow.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import test from 'node:test';
import { Server } from './support.mjs';

const { chromium } = createRequire(new URL('../../Tools/TRN/TarnPage/package.json', import.meta.url))('playwright-core');

async function openBrowser(t) {
  const browser = await chromium.launch({
    executablePath: process.env.TARN_CHROMIUM ?? '/usr/bin/chromium',
    args: [
      '--headless',
      '--no-sandbox',
      '--disable-gpu',
      '--disable-quic',
      '--no-first-run',
      '--disable-background-networking',
      '--disable-component-update',
      '--disable-sync',
    ],
  });
  t.after(() => browser.close());
  return browser;
}

/** A page whose complaints and foreign requests are remembered. */
async function openPage(browser, server, options = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 720 }, ...options });
  const page = await context.newPage();
  page.complaints = [];
  page.on('pageerror', (error) => page.complaints.push(String(error)));
  page.on('console', (message) => message.type() === 'error' && page.complaints.push(message.text()));
  page.on('request', (request) => {
    if (!/^(blob:|data:)/.test(request.url()) && !request.url().startsWith(server.address + '/'))
      page.complaints.push(`asked ${request.url()}`);
  });
  await page.goto(server.address);
  return page;
}

const reading = (page) => page.locator('[data-marker="1"] .reading').first().innerText();

/** Waits until the text of a place satisfies `isIt`; the text. */
async function textWhere(page, selector, isIt) {
  const place = page.locator(selector).first();
  const end = Date.now() + 25_000;
  for (;;) {
    const text = await place.innerText({ timeout: 20_000 });
    if (isIt(text)) return text;
    if (Date.now() > end) throw new Error(`${selector} still says: ${text}`);
    await page.waitForTimeout(50);
  }
}

test('the page finds a simulated tone, holds, averages, saves, and finds it again', { timeout: 110_000 }, async (t) => {
  const server = await Server.start();
  t.after(() => server.process.kill('SIGKILL'));
  const browser = await openBrowser(t);
  const page = await openPage(browser, server);
  // a running spectrum without a click
  await page.locator('.power .level').first().waitFor({ timeout: 20_000 });
  await textWhere(page, '#rate', (text) => /sweeps\/s/.test(text));

  await page.locator('#channel').selectOption('6');
  await textWhere(page, '.power h2', (text) => /channel 6, 2437 mhz/i.test(text));
  await page.keyboard.press('m');
  await page.keyboard.press('Shift+P');
  const first = await textWhere(page, '[data-marker="1"] .reading', (text) => /2440\.\d+ MHz/.test(text));
  const [mhz, level] = first.match(/(\d+\.\d+) MHz\s+(-\d+\.\d+) dBm\/39.0625 kHz/).slice(1).map(Number);
  assert.ok(Math.abs(mhz - 2440) <= 0.02, first);
  assert.ok(Math.abs(level + 60) <= 1.5, first);
  const power = Number(await page.locator('.power .level').first().innerText());
  assert.ok(Math.abs(power + 60) <= 1, String(power));

  await page.locator('#maxhold').check();
  await page.locator('#average_sweeps').fill('4');
  await page.locator('#average_sweeps').blur();
  await page.locator('#channel_average').check();
  await textWhere(page, '#caption', (text) => /average 4\/4/.test(text) && /max hold since/.test(text));
  await page.locator('#store-average').click();
  await page.locator('#mode-hold').click();
  await textWhere(page, '#rate', (text) => text === 'held');
  await page.locator('#limit').fill('-50');
  await page.locator('#set_limit').click();
  await page.locator('#mode-single').click();
  await textWhere(page, '.power .detail', (text) => /limit -50 dBm: PASS/.test(text));

  await page.locator('#command').fill('-bogus');
  await page.keyboard.press('Enter');
  await textWhere(page, '.messages', (text) => /ERROR .*-bogus/.test(text));
  const hasSnapshots = (await server.json('GET', '/api/keys')).json.some((key) => key.name === '-save_all');
  const [save, name] = hasSnapshots ? ['#save-save_all', 'snapshot.csv'] : ['#save-save_spectrum', 'snapshot-spectrum.txt'];
  await page.locator('#tab-files').click();
  await page.locator(save).click();
  await page.locator(`[data-file="${name}"]`).waitFor({ timeout: 20_000 });
  if (hasSnapshots) {
    await page.locator('#channel').selectOption('1');
    await textWhere(page, '.messages', (text) => /-channel 1/.test(text));
  }
  await page.reload();
  if (hasSnapshots) await page.locator('[data-file="snapshot.csv"] button').first().click();
  await page.locator('#tab-spectrum').click();
  await textWhere(page, '.power h2', (text) => /channel 6, 2437 mhz/i.test(text));
  const again = await textWhere(page, '[data-marker="1"] .reading', (text) => /2440\.\d+ MHz/.test(text));
  assert.ok(Math.abs(Number(again.match(/(-\d+\.\d+) dBm/)[1]) - level) <= 1.5, again);
  assert.match(await page.locator('#reference_note').innerText(), /Average of/);

  const capture = await page.evaluateHandle(() => {
    const tone = Array.from({ length: 32768 }, (_, n) => `${[200, 0, -200, 0][n % 4]} ,${[0, 200, 0, -200][n % 4]}`);
    const transfer = new DataTransfer();
    transfer.items.add(new File([tone.join('\n') + '\n'], 'BAND_2.4_CHANNEL_11_BW_20_CHAIN_A_desk.txt'));
    return transfer;
  });
  await page.dispatchEvent('body', 'drop', { dataTransfer: capture });
  await textWhere(page, '.power h2', (text) => /channel 11, 2462 mhz/i.test(text));
  await page.keyboard.press('Shift+P');
  await textWhere(page, '[data-marker="1"] .reading', (text) => /2472\.0\d+ MHz/.test(text)); // a quarter of the rate up
  assert.deepEqual(page.complaints, []);
  await browser.close();
  await server.stop();
});

test('a desense test goes on without its page, and another page shows its end', { timeout: 90_000 }, async (t) => {
  const server = await Server.start({ air: 'sim:laptop', samples: 32768, more: ['--workload', 'on'] });
  t.after(() => server.process.kill('SIGKILL'));
  const browser = await openBrowser(t);
  const first = await openPage(browser, server);
  await textWhere(first, '#connection', (text) => /● connected/.test(text));
  await first.keyboard.press('t');
  for (const [band, list] of Object.entries({ LB: '13', HB: '36, 52, 200', UHB: '' }))
    await first.locator(`#desense_${band}Channels`).fill(list);
  await first.locator('#desense_iterations').fill('100');
  await first.locator('#desense_name').fill('short');
  await first.locator('#desense_load').uncheck(); // the scene hears one all the same
  await first.locator('#desense_start').click();
  await textWhere(first, '#desense_status', (text) => /short: /.test(text));
  await first.close();
  const test = async () => (await server.json('GET', '/api/desense')).json;
  while ((await test()).phase !== 'ended') await new Promise((resolve) => setTimeout(resolve, 100));

  const page = await openPage(browser, server);
  await page.keyboard.press('t');
  assert.equal(await textWhere(page, '#desense_verdict', Boolean), 'FAIL');
  await page.locator('[data-desense]').nth(2).waitFor();
  const rows = await page.locator('[data-desense]').allInnerTexts();
  const told = rows.map((row) => row.split(/\s+/)).map((cells) => [cells[2], cells.at(-1)]);
  assert.deepEqual(told, [['52', 'FAIL'], ['13', 'FAIL'], ['36', 'PASS']]); // worst first
  assert.match(await page.locator('#desense_left_out').innerText(), /5\.2 GHz channel 200 \(/);
  await page.locator('[data-desense="2.4/13"]').click();
  await page.locator('canvas[aria-label^="Spectrum of 2.4 GHz channel 13: chain A average -11"]').waitFor();
  await textWhere(page, '.desense h2', (text) => /channel 13, no load/.test(text));
  const opens = page.waitForEvent('popup');
  await page.locator('[data-test="short"] a').first().click();
  assert.match(await (await opens).locator('h1').innerText(), /FAIL/);
  await page.locator('[data-test="short"] button:visible').last().click(); // asks first
  await page.locator('[data-test="short"] button:visible').last().click();
  await page.locator('[data-test="short"]').waitFor({ state: 'detached' });
  assert.deepEqual(page.complaints, []);
  await browser.close();
  await server.stop();
});

test('a lost connection is told, values dim, and the page comes back by itself', { timeout: 90_000 }, async (t) => {
  const server = await Server.start();
  t.after(() => server.process.kill('SIGKILL'));
  const browser = await openBrowser(t);
  const page = await openPage(browser, server);
  await page.locator('.power .level').first().waitFor({ timeout: 20_000 });
  const port = server.port;
  await server.stop(true);
  await textWhere(page, '#connection', (text) => /connection lost/.test(text));
  await page.locator('body.stale').waitFor();
  assert.equal(await page.locator('div.lost').isVisible(), true);
  const again = await Server.start({ folder: server.folder, port });
  assert.equal(again.port, port);
  await textWhere(page, '#connection', (text) => /● connected/.test(text));
  await page.locator('body:not(.stale)').waitFor({ timeout: 20_000 });
  await browser.close();
  await again.stop();
});
