// Spectrograms and the waveform, on canvases.

// Three bytes a colour, 256 of them, black first.
function paint(image, pixel, level, colours) {
  const colour = 3 * Math.max(0, Math.min(255, Math.round(level * 255)));
  image.data.set(colours.subarray(colour, colour + 3), 4 * pixel);
  image.data[4 * pixel + 3] = 255;
}

// A canvas of `columns` x `rows` pixels; `levelAt(column, row)` is 0 to 1, row 0 at the top.
function makePixels(columns, rows, levelAt, colours) {
  const canvas = document.createElement("canvas");
  canvas.width = columns;
  canvas.height = rows;
  const context = canvas.getContext("2d");
  const image = context.createImageData(columns, rows);
  for (let row = 0; row < rows; ++row) {
    for (let column = 0; column < columns; ++column) {
      paint(image, row * columns + column, levelAt(column, row), colours);
    }
  }
  context.putImageData(image, 0, 0);
  return canvas;
}

// Gives a canvas the pixels that it has on the screen; answers its context and size.
function prepare(canvas) {
  const scale = window.devicePixelRatio || 1;
  const width = Math.max(1, Math.round(canvas.clientWidth * scale));
  const height = Math.max(1, Math.round(canvas.clientHeight * scale));
  canvas.width = width;
  canvas.height = height;
  return { context: canvas.getContext("2d"), width, height };
}

// A grey PNG of levels, in colours.
async function colourLevels(png, colours) {
  const image = new Image();
  image.src = png;
  await image.decode();
  const canvas = document.createElement("canvas");
  canvas.width = image.width;
  canvas.height = image.height;
  const context = canvas.getContext("2d");
  context.drawImage(image, 0, 0);
  const grey = context.getImageData(0, 0, image.width, image.height).data;
  return makePixels(image.width, image.height, (x, y) => grey[4 * (y * image.width + x)] / 255, colours);
}

// `pixels` of a spectrogram whose first column begins at `start` and spans `column` seconds, each row
// `bin` Hz, the lowest centred on 0 Hz; shown from 0 to `duration` and from 0 to `limit` Hz.
function drawSpectrogram(canvas, pixels, { start, column, bin }, duration, limit) {
  const { context, width, height } = prepare(canvas);
  context.imageSmoothingQuality = "high";
  const perSecond = width / duration;
  const rowHeight = (bin * height) / limit;
  context.drawImage(pixels, start * perSecond, height - (pixels.height - 0.5) * rowHeight,
    pixels.width * column * perSecond, pixels.height * rowHeight);
}

function drawWave(canvas, { column, data }, duration, inks) {
  const { context, width, height } = prepare(canvas);
  const middle = height / 2;
  const toY = (step) => middle - (step / 127) * middle * 0.94;
  context.fillStyle = inks.line;
  context.fillRect(0, middle, width, 1);
  for (const [ink, first] of [[inks.before, 0], [inks.after, 2]]) {
    context.fillStyle = ink;
    for (let i = 0; 4 * i < data.length; ++i) {
      const left = (i * column * width) / duration;
      const right = Math.min(width, ((i + 1) * column * width) / duration);
      const top = toY(data[4 * i + first + 1]);
      context.fillRect(left, top - 0.5, right - left, toY(data[4 * i + first]) - top + 1);
    }
  }
}

// The mean of all channels, brought to a rate of some 4 kHz behind a low-pass: cheap to transform.
function reduce(channels, rate) {
  const factor = Math.max(1, Math.floor(rate / 4000));
  const reach = 6 * factor;
  const taps = Float32Array.from({ length: 2 * reach + 1 }, (_, i) => {
    const x = (Math.PI * (i - reach)) / factor;
    const phase = (Math.PI * (i - reach)) / (reach + 1);
    return (x === 0 ? 1 : Math.sin(x) / x) * (0.42 + 0.5 * Math.cos(phase) + 0.08 * Math.cos(2 * phase));
  });
  const gain = 1 / (channels.length * taps.reduce((sum, tap) => sum + tap, 0));
  const reduced = new Float32Array(Math.ceil(channels[0].length / factor));
  for (const samples of channels) {
    for (let i = 0; i < reduced.length; ++i) {
      for (let k = Math.max(0, reach - i * factor); k < taps.length && i * factor + k - reach < samples.length; ++k) {
        reduced[i] += gain * taps[k] * samples[i * factor + k - reach];
      }
    }
  }
  return { samples: reduced, rate: rate / factor };
}

// Spectra of a clip, through Hann windows of 45 ms every 4 ms, each 8 Hz up to `limit`. A sine of full
// scale has 0 dB. As {start, column, bin, pixels}.
function analyse(channels, clipRate, limit, range, colours) {
  const { samples, rate } = reduce(channels, clipRate);
  const bin = 8;
  const rows = Math.ceil(limit / bin) + 1;
  const size = 2 * Math.round(0.0225 * rate);
  const hop = Math.round(0.004 * rate);
  const columns = Math.ceil(samples.length / hop);
  const window = Float32Array.from({ length: size }, (_, i) => (2 - 2 * Math.cos((2 * Math.PI * (i + 0.5)) / size)) / size);
  const turn = (2 * Math.PI * bin) / rate;
  const cosines = Float32Array.from({ length: rows * size }, (_, i) => Math.cos(turn * Math.floor(i / size) * (i % size)));
  const sines = Float32Array.from({ length: rows * size }, (_, i) => Math.sin(turn * Math.floor(i / size) * (i % size)));
  const frame = new Float32Array(size);
  const levels = new Float32Array(columns * rows);
  for (let column = 0; column < columns; ++column) {
    for (let i = 0; i < size; ++i) {
      frame[i] = (samples[column * hop + i - size / 2] || 0) * window[i];
    }
    for (let row = 0; row < rows; ++row) {
      let real = 0;
      let imaginary = 0;
      for (let i = 0; i < size; ++i) {
        real += frame[i] * cosines[row * size + i];
        imaginary += frame[i] * sines[row * size + i];
      }
      const decibel = 10 * Math.log10(real * real + imaginary * imaginary + 1e-20);
      levels[column * rows + row] = (decibel - range.floor) / (range.top - range.floor);
    }
  }
  const pixels = makePixels(columns, rows, (x, y) => levels[x * rows + rows - 1 - y], colours);
  return { start: -hop / 2 / rate, column: hop / rate, bin, pixels };
}
