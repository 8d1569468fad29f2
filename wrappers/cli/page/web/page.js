// The page of a recording: fills what stands in the markup from the JSON beside it. Texts go in as
// texts, never as markup.

const report = JSON.parse(document.getElementById("data").textContent);
const picture = report.picture;
const colours = decodeBase64(picture.colours);
const wave = { column: picture.wave.column, data: new Int8Array(decodeBase64(picture.wave.data).buffer) };
const duration = Math.max(report.duration, 1e-3);
const clipLimit = Math.max(500, Math.ceil((1.25 * report.limit) / 100) * 100); // Hz
const soundWords = { before: "before", after: "after", removed: "what was removed" };
const find = (id) => document.getElementById(id);

function clock(seconds, digits = 2) {
  const minutes = Math.floor(seconds / 60);
  const rest = (seconds - 60 * minutes).toFixed(digits);
  const padded = rest.padStart(digits > 0 ? digits + 3 : 2, "0");
  const hours = Math.floor(minutes / 60);
  if (hours > 0) {
    return `${hours}:${String(minutes % 60).padStart(2, "0")}:${padded}`;
  }
  return minutes > 0 ? `${minutes}:${padded}` : `${rest} s`;
}

function decibels(value) {
  if (value < -99) {
    return "nothing";
  }
  return (value < 0 ? "−" : "+") + Math.abs(value).toFixed(1) + " dB";
}

const percent = (part) => `${100 * Math.max(0, Math.min(1, part))}%`;

function add(parent, name, text, className) {
  const element = parent.appendChild(document.createElement(name));
  if (text !== undefined) {
    element.textContent = text;
  }
  if (className) {
    element.className = className;
  }
  return element;
}

// --- the whole recording

function fillHead() {
  find("version").textContent = report.version;
  find("subtitle").textContent = report.subtitle;
  for (const fact of report.facts) {
    const box = add(find("facts"), "div");
    add(box, "dt", fact.label);
    add(box, "dd", fact.value);
  }
  find("events-note").textContent = report.events.length === 0 ? report.eventsNote
    : `${report.eventsNote} Levels are those of the low end, against ${report.levelNote}.`;
}

function addAxis(axis) {
  for (const part of [0, 0.5, 1]) {
    const hertz = part * picture.limit;
    add(axis, "span", hertz < 1000 ? `${hertz}` : `${hertz / 1000} kHz`).style.bottom = percent(part);
  }
}

// Round distances between times, ten of them at the most.
function timeStep() {
  const steps = [0.1, 0.2, 0.5, 1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 1200, 1800, 3600];
  return steps.find((step) => duration / step <= 10) || 7200;
}

function addTimes() {
  const step = timeStep();
  for (let i = 0; i * step <= duration; ++i) {
    const text = i === 0 ? "0" : clock(i * step, step < 1 ? 1 : 0);
    add(find("times"), "span", text).style.left = percent((i * step) / duration);
  }
}

function ink(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

let spectrograms = null; // of the whole recording, before and after

async function drawPicture() {
  spectrograms = spectrograms || {
    before: await colourLevels(picture.before.png, colours),
    after: await colourLevels(picture.after.png, colours),
  };
  for (const name of ["before", "after"]) {
    drawSpectrogram(find(name), spectrograms[name], picture[name], duration, picture.limit);
  }
  drawWave(find("wave"), wave, duration, { before: ink("--before"), after: ink("--after"), line: ink("--line") });
  const { context, width, height } = prepare(find("colours"));
  context.drawImage(makePixels(256, 1, (x) => x / 255, colours), 0, 0, width, height);
}

function fillPicture() {
  for (const name of ["before", "after"]) {
    addAxis(find("hertz-" + name));
    find(name).setAttribute("aria-label", `Spectrogram of the recording ${name} the repair, 0 to 1 kHz`);
  }
  find("wave").setAttribute("aria-label", "Waveform of the recording before and after the repair");
  find("levels").textContent = `${picture.floor} to ${picture.top} dBFS`.replace(/-/g, "−");
  addTimes();
  // The nearest event is the one that is meant.
  find("panels").addEventListener("click", (click) => {
    const box = find("marks").getBoundingClientRect();
    const time = ((click.clientX - box.left) / box.width) * duration;
    const nearest = report.events.reduce((best, event, i) =>
      best < 0 || Math.abs(event.time - time) < Math.abs(report.events[best].time - time) ? i : best, -1);
    if (nearest >= 0) {
      choose(nearest, true);
    }
  });
}

// --- the events

const rows = []; // element of each event, by its number
let chosen = -1;
let lastSound = "before";
const clips = new Map();
const player = new Player(showPlaying);

function clipOf(number) {
  if (!clips.has(number)) {
    clips.set(number, readClip(number));
  }
  return clips.get(number);
}

// Both ends of a scale that has room for all levels and for 0.
function levelScale() {
  const levels = report.events.flatMap((event) => [event.before, event.after]).filter((level) => level > -40);
  const least = Math.min(0, ...levels);
  const greatest = Math.max(0, ...levels);
  const room = Math.max(1, 0.06 * (greatest - least));
  return { least: least - room, width: greatest - least + 2 * room };
}

const scale = levelScale();
const placeOf = (level) => percent((level - scale.least) / scale.width);

function fillLevel(box, event) {
  const fall = event.after > -99 ? `${Math.abs(event.after - event.before).toFixed(1)} dB less` : "all taken away";
  box.querySelector(".fall").textContent = fall;
  box.querySelector(".zero").style.left = placeOf(0);
  box.querySelector(".before").style.left = placeOf(event.before);
  box.querySelector(".after").style.left = placeOf(event.after);
  const way = box.querySelector(".way");
  way.style.left = placeOf(Math.min(event.before, event.after));
  way.style.right = `calc(100% - ${placeOf(Math.max(event.before, event.after))})`;
  const numbers = box.querySelector(".numbers");
  add(numbers, "span", decibels(event.before), "before");
  add(numbers, "span", " to ", "to");
  add(numbers, "span", decibels(event.after), "after");
}

function fillWhere(box, event, number) {
  const heading = box.querySelector("h3");
  add(heading, "span", `${number + 1}`, "number");
  add(heading, "span", clock(event.time));
  const place = box.querySelector(".strip i");
  place.style.left = percent(event.start / duration);
  place.style.width = percent((event.end - event.start) / duration);
  box.querySelector(".span").textContent = `${Math.round(1000 * (event.end - event.start))} ms`;
  report.details.forEach((detail, i) => {
    const pair = add(box.querySelector(".details"), "div");
    pair.title = detail.value;
    add(pair, "dt", detail.label);
    add(pair, "dd", event.details[i]);
  });
}

function addRow(event, number) {
  const row = find("row").content.firstElementChild.cloneNode(true);
  row.dataset.event = number;
  row.setAttribute("aria-label", `Event ${number + 1} at ${clock(event.time)}, ${decibels(event.before)} before, ` +
    `${decibels(event.after)} after`);
  fillWhere(row.querySelector(".where"), event, number);
  fillLevel(row.querySelector(".level"), event);
  row.querySelector(".players").setAttribute("aria-label", `Play event ${number + 1}`);
  const hasClip = find("clip-" + number) !== null;
  for (const button of row.querySelectorAll("button")) {
    button.tabIndex = -1;
    button.disabled = !hasClip;
    button.addEventListener("click", () => toggle(number, button.dataset.sound));
  }
  row.addEventListener("focusin", () => choose(number, false));
  rows.push(row);
  find("events").append(row);
  if (hasClip) {
    watcher.observe(row);
  }
  const mark = add(find("marks"), "i");
  mark.style.left = percent(event.start / duration);
  mark.style.width = percent((event.end - event.start) / duration);
}

function drawRow(row) {
  const number = Number(row.dataset.event);
  const event = report.events[number];
  const clip = clipOf(number);
  [...row.querySelectorAll(".clip")].forEach((figure, i) => {
    const name = i === 0 ? "before" : "after";
    const canvas = figure.querySelector("canvas");
    const spectra = analyse(clip[name], clip.rate, clipLimit, picture, colours);
    drawSpectrogram(canvas, spectra.pixels, spectra, clip.seconds, clipLimit);
    canvas.setAttribute("aria-label", `Spectrogram ${name}, 0 to ${clipLimit} Hz`);
    figure.querySelector(".limit").textContent = `${clipLimit} Hz`;
    const span = figure.querySelector(".span-mark");
    span.style.left = percent((event.start - clip.start) / clip.seconds);
    span.style.right = percent(1 - (event.end - clip.start) / clip.seconds);
  });
}

// Rows are drawn when they come into view.
const watcher = new IntersectionObserver((entries) => {
  for (const entry of entries.filter((one) => one.isIntersecting)) {
    watcher.unobserve(entry.target);
    drawRow(entry.target);
  }
}, { rootMargin: "300px" });

// Makes an event the current one: the only row that Tab reaches, with its place in the picture.
function choose(number, withFocus) {
  if (number !== chosen) {
    const marks = find("marks").children;
    rows.forEach((row, i) => {
      const isChosen = i === number;
      row.tabIndex = isChosen ? 0 : -1;
      row.classList.toggle("chosen", isChosen);
      row.querySelectorAll("button").forEach((button) => { button.tabIndex = isChosen ? 0 : -1; });
      marks[i].classList.toggle("chosen", isChosen);
    });
    chosen = number;
  }
  if (withFocus && !rows[number].contains(document.activeElement)) {
    rows[number].focus({ preventScroll: true });
    rows[number].scrollIntoView({ block: "nearest" });
  }
}

function toggle(number, sound) {
  lastSound = sound;
  choose(number, false);
  if (player.isPlaying(number, sound)) {
    player.stop();
  } else if (clipOf(number)) {
    player.play(number, sound, clipOf(number));
  }
}

function showPlaying() {
  for (const [number, row] of rows.entries()) {
    for (const button of row.querySelectorAll("button")) {
      button.setAttribute("aria-pressed", String(player.isPlaying(number, button.dataset.sound)));
    }
    row.classList.toggle("playing", player.isPlaying(number));
  }
  const { playing } = player;
  find("status").textContent = playing ? `Playing event ${playing.number + 1}, ${soundWords[playing.sound]}` : "";
  if (playing) {
    requestAnimationFrame(movePlayhead);
  }
}

function movePlayhead() {
  if (!player.playing) {
    return;
  }
  const { number, clip } = player.playing;
  for (const head of rows[number].querySelectorAll(".head-mark")) {
    head.style.left = percent(player.place() / clip.seconds);
  }
  requestAnimationFrame(movePlayhead);
}

// The rows as they stand in the list now.
function orderOf(order) {
  const numbers = [...report.events.keys()];
  return order === "time" ? numbers : numbers.sort((a, b) => report.events[b].before - report.events[a].before);
}

function sortRows(order) {
  find("events").append(...orderOf(order).map((number) => rows[number]));
}

const steps = { ArrowDown: 1, ArrowUp: -1, PageDown: 5, PageUp: -5, Home: -Infinity, End: Infinity };
const soundKeys = { b: "before", a: "after", r: "removed" };

function onKey(key) {
  if (key.ctrlKey || key.altKey || key.metaKey) {
    return;
  }
  const list = [...find("events").children];
  const at = list.indexOf(rows[chosen]);
  const sound = soundKeys[key.key.toLowerCase()];
  if (key.key in steps) {
    const next = Math.max(0, Math.min(list.length - 1, at + steps[key.key]));
    rows[chosen].focus({ preventScroll: true });
    choose(Number(list[next].dataset.event), true);
  } else if (sound) {
    toggle(chosen, sound);
  } else if (key.key === " " && key.target === rows[chosen]) {
    toggle(chosen, lastSound);
  } else if (key.key === "Escape") {
    player.stop();
  } else {
    return;
  }
  key.preventDefault();
}

function redraw() {
  drawPicture();
  rows.forEach((row) => watcher.observe(row));
}

fillHead();
fillPicture();
report.events.forEach(addRow);
if (rows.length > 0) {
  choose(0, false);
  find("events").addEventListener("keydown", onKey);
} else {
  find("keys").hidden = true;
  document.querySelector(".order").hidden = true;
}
document.querySelectorAll("[name=order]").forEach((button) =>
  button.addEventListener("change", () => sortRows(button.value)));
matchMedia("(prefers-color-scheme: dark)").addEventListener("change", drawPicture);
let waiting = 0;
addEventListener("resize", () => {
  clearTimeout(waiting);
  waiting = setTimeout(redraw, 150);
});
drawPicture();
