// What the page and its server cost: frames a second and memory of the page in headless Chromium, processor time of the
// server for each further client. Sweeps of 4096 bins and two chains.
// usage: script/bench page [MINUTES-OF-THE-MEMORY-MEASUREMENT]      (default: 1)
import { execFileSync } from 'node:child_process';
import { readdirSync, readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { loadavg } from 'node:os';
import { Server } from '../tests/TarnServe/support.mjs';

const { chromium } = createRequire(new URL('../Tools/TRN/TarnPage/package.json', import.meta.url))('playwright-core');
const minutes = Number(process.argv[2] ?? 1);
const bins = 4096;
const tuning = '-band 5.2 -bandwidth 160 -channel 50 -chain AB -rbw 39.0625';
const ticksPerSecond = Number(execFileSync('getconf', ['CLK_TCK']));
const seconds = (count) => new Promise((resolve) => setTimeout(resolve, count * 1000));
const load = () => `load ${loadavg()[0].toFixed(1)}`;

/** Processor seconds of a process, its threads and no other. */
function processorSeconds(pid) {
  const fields = readFileSync(`/proc/${pid}/stat`, 'utf8').split(') ')[1].split(' ');
  return (Number(fields[11]) + Number(fields[12])) / ticksPerSecond;
}

/** Resident megabytes of a process. */
function residentMb(pid) {
  return Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${pid}/status`, 'utf8'))?.[1] ?? 0) / 1024;
}

/** The browser's process that runs the page: the youngest renderer that descends from this process. */
function rendererPid() {
  const pids = readdirSync('/proc').filter((name) => /^\d+$/.test(name));
  const parent = (pid) => Number(readFileSync(`/proc/${pid}/stat`, 'utf8').split(') ')[1].split(' ')[1]);
  const isOurs = (pid) => pid === process.pid || (pid > 1 && isOurs(parent(pid)));
  const isRenderer = (pid) => {
    try {
      return readFileSync(`/proc/${pid}/cmdline`, 'utf8').includes('--type=renderer') && isOurs(Number(pid));
    } catch {
      return false; // gone meanwhile
    }
  };
  return Math.max(...pids.filter(isRenderer).map(Number));
}

async function newServer() {
  const server = await Server.start({ samples: 98304 });
  const answer = await server.line(tuning);
  if (answer.json.exitCode !== 0) throw new Error(answer.json.error);
  return server;
}

/** A client that takes every sweep as the page does and does nothing with it; counts the sweeps. */
async function client(server) {
  const stream = await server.stream();
  const counted = { sweeps: 0 };
  stream.socket.removeAllListeners('data');
  stream.socket.on('data', (piece) => (counted.sweeps += piece.includes('"Host Frame"') ? 1 : 0));
  setInterval(() => stream.send({ drawn: 1 }), 5000).unref(); // for its pongs, which it doesn't send
  stream.send({ subscribe: ['Host State', 'Host Frame', 'Trigger Response', 'Power Per Chain', 'Spectrum Data'] });
  return counted;
}

async function measureClients() {
  const server = await newServer();
  const shares = [];
  const clients = [];
  for (const count of [1, 5]) {
    while (clients.length < count) clients.push(await client(server));
    await seconds(2);
    const before = { cpu: processorSeconds(server.process.pid), sweeps: clients[0].sweeps, time: Date.now() };
    await seconds(30);
    const time = (Date.now() - before.time) / 1000;
    const sweeps = clients[0].sweeps - before.sweeps;
    const cpu = processorSeconds(server.process.pid) - before.cpu;
    shares.push(cpu / sweeps);
    console.log(
      `server, ${count} clients: ${((cpu / time) * 100).toFixed(1)} % of a core, ${(sweeps / time).toFixed(1)} sweeps/s, ` +
        `${((cpu / sweeps) * 1000).toFixed(2)} ms a sweep, ${residentMb(server.process.pid).toFixed(0)} MB (${load()})`,
    );
  }
  const each = (shares[1] - shares[0]) / 4;
  console.log(`each further client: ${(each * 1000).toFixed(3)} ms a sweep, ${(each * 3000).toFixed(2)} % of a core at 30/s`);
  await server.stop();
}

async function measurePage() {
  const server = await newServer();
  const browser = await chromium.launch({
    executablePath: process.env.TARN_CHROMIUM ?? '/usr/bin/chromium',
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-background-networking', '--no-first-run'],
  });
  const page = await browser.newPage({ viewport: { width: 1280, height: 720 } });
  await page.goto(server.address);
  await page.locator('.power .level').first().waitFor();
  await page.waitForFunction((wanted) => document.getElementById('caption').textContent.includes(wanted), `${bins} bins`);
  const debug = await page.context().newCDPSession(page);
  await debug.send('Performance.enable');
  const pid = rendererPid();
  // the power panel is written once for each frame that is drawn
  await page.evaluate(() => {
    window.drawn = new Set();
    const note = () => window.drawn.add(/sweep \d+/.exec(document.querySelector('.power').textContent)?.[0]);
    window.observer = new MutationObserver(note);
    window.observer.observe(document.querySelector('.power'), { childList: true });
  });
  for (let round = 0; round < 3; ++round) {
    const before = { cpu: processorSeconds(pid), time: Date.now(), server: processorSeconds(server.process.pid) };
    await page.evaluate(() => window.drawn.clear());
    await seconds(10);
    const drawn = await page.evaluate(() => window.drawn.size);
    const time = (Date.now() - before.time) / 1000;
    const share = (now, then) => `${(((now - then) / time) * 100).toFixed(0)} %`;
    console.log(
      `page, ${bins} bins, 2 chains: ${(drawn / time).toFixed(1)} frames/s; of a core: page ` +
        `${share(processorSeconds(pid), before.cpu)}, server ${share(processorSeconds(server.process.pid), before.server)}; ` +
        `"${await page.locator('#rate').innerText()}" (${load()})`,
    );
  }
  await page.evaluate(() => {
    window.observer.disconnect(); // its own memory must not count
    window.drawn.clear();
  });
  for (let half = 0; half <= 2 * minutes; ++half) {
    await debug.send('HeapProfiler.collectGarbage');
    const { metrics } = await debug.send('Performance.getMetrics');
    const heap = metrics.find(({ name }) => name === 'JSHeapUsedSize').value / 1e6;
    const nodes = metrics.find(({ name }) => name === 'Nodes').value;
    console.log(
      `after ${half / 2} min: heap ${heap.toFixed(1)} MB, ${nodes} nodes, page ${residentMb(pid).toFixed(0)} MB, ` +
        `server ${residentMb(server.process.pid).toFixed(0)} MB`,
    );
    if (half < 2 * minutes) await seconds(30);
  }
  await browser.close();
  await server.stop();
}

await measureClients();
await measurePage();
