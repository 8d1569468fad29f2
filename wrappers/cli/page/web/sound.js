// Clips and how they are heard. A clip lies in the page as Base64 of 16-bit samples, interleaved,
// and is decoded when it is first asked for.

function decodeBase64(text) {
  const binary = atob(text);
  const bytes = new Uint8Array(binary.length);
  for (let i = 0; i < binary.length; ++i) {
    bytes[i] = binary.charCodeAt(i);
  }
  return bytes;
}

// Samples of each channel, full scale 1.
function decodeSamples(text, channels) {
  const view = new DataView(decodeBase64(text).buffer);
  const frames = view.byteLength / 2 / channels;
  return Array.from({ length: channels }, (_, channel) => {
    const samples = new Float32Array(frames);
    for (let i = 0; i < frames; ++i) {
      samples[i] = view.getInt16(2 * (i * channels + channel), true) / 32768;
    }
    return samples;
  });
}

// The clip of event `number` as {start, rate, seconds, before, after, removed}; null: it has none.
function readClip(number) {
  const element = document.getElementById("clip-" + number);
  if (!element) {
    return null;
  }
  const clip = JSON.parse(element.textContent);
  const before = decodeSamples(clip.before, clip.channels);
  const after = decodeSamples(clip.after, clip.channels);
  const removed = before.map((samples, channel) => samples.map((one, i) => one - after[channel][i]));
  return { start: clip.start, rate: clip.rate, seconds: before[0].length / clip.rate, before, after, removed };
}

// Plays one clip at a time. `onChange` is called whenever what plays has changed.
class Player {
  constructor(onChange) {
    this.onChange = onChange;
    this.context = null;
    this.playing = null; // {number, sound, source, offset, since, clip}
  }

  // Seconds from the begin of the clip that plays.
  place() {
    const { offset, since, clip } = this.playing;
    return Math.min(clip.seconds, offset + Math.max(0, this.context.currentTime - since));
  }

  isPlaying(number, sound) {
    return this.playing !== null && this.playing.number === number && (!sound || this.playing.sound === sound);
  }

  // From the begin; another sound of the clip that plays already goes on where that one is.
  play(number, sound, clip) {
    const offset = this.isPlaying(number) ? this.place() : 0;
    this.silence();
    this.context = this.context || new AudioContext();
    this.context.resume();
    const buffer = this.context.createBuffer(clip[sound].length, clip[sound][0].length, clip.rate);
    clip[sound].forEach((samples, channel) => buffer.copyToChannel(samples, channel));
    const source = this.context.createBufferSource();
    source.buffer = buffer;
    source.connect(this.context.destination);
    source.onended = () => this.stop();
    source.start(0, offset);
    this.playing = { number, sound, source, offset, since: this.context.currentTime, clip };
    this.onChange();
  }

  stop() {
    if (this.playing) {
      this.silence();
      this.onChange();
    }
  }

  silence() {
    if (this.playing) {
      this.playing.source.onended = null;
      this.playing.source.stop();
      this.playing = null;
    }
  }
}
