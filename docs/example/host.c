/* SPDX-License-Identifier: ISC
 *
 * The least that a host of the module does: cc -I PREFIX/include/puffguard host.c -ldl
 * Reads mono 32-bit floats at 48 kHz from standard input and writes them repaired and in step.
 *     sox talk.wav -r 48k -c 1 -t f32 - | ./host LMPuffguard.so | sox -r 48k -c 1 -t f32 - out.wav
 * With two times in seconds behind the module it repairs what lies between them, and nothing else.
 */
#include "PluginCoreCallback.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

enum { Process = 0, UI = 1, BlockFrames = 512, Rate = 48000, MostFrames = 60 * Rate };

/* A recording of at most a minute. It is read on behind what has been written, so that one copy of
 * it would not be enough. */
static float before[MostFrames];
static float after[MostFrames];

static uint32_t ReadFrames(void* refcon, int64_t position, uint32_t frames, float* const* channels)
{
    (void)refcon;
    for (uint32_t i = 0; i < frames; ++i) {
        channels[0][i] = before[position + i];
    }
    return 0; /* anything else is a failure, here and in the next */
}

static uint32_t
WriteFrames(void* refcon, int64_t position, uint32_t frames, const float* const* channels)
{
    (void)refcon;
    for (uint32_t i = 0; i < frames; ++i) {
        after[position + i] = channels[0][i];
    }
    return 0;
}

/* Takes long: a host with windows calls it on a thread of its own, while they go on. `progress` of
 * the record would follow it, and could cancel. */
static int RepairRegion(PluginCoreEntryFunction entry, PluginCore* plugin, double start, double end)
{
    const size_t frames = fread(before, sizeof(float), MostFrames, stdin);
    for (size_t i = 0; i < frames; ++i) {
        after[i] = before[i]; /* what isn't written stays */
    }
    const RenderRegionRecord region = {.first = (int64_t)(start * Rate + 0.5),
                                       .last = (int64_t)(end * Rate + 0.5) - 1};
    RenderRecord render = {.recordBytes = sizeof render,
                           .regionBytes = sizeof region,
                           .frames = (int64_t)frames,
                           .regions = &region,
                           .regionCount = 1,
                           .fadeMilliseconds = 10,
                           .read = ReadFrames,
                           .write = WriteFrames};
    HostMessageRecord message = {PLUGIN_CORE_MESSAGE_RENDER, sizeof render, &render};
    entry(PLUGIN_CORE_MAGIC, SelectorHostMessage, UI, plugin, &message);
    fputs(render.message, stderr); /* why it could not be done */
    fwrite(after, sizeof(float), frames, stdout);
    return render.result == RenderDone;
}

static void RepairAll(PluginCoreEntryFunction entry, PluginCore* plugin)
{
    uint32_t late = 0; /* samples by which the output lags behind the input */
    entry(PLUGIN_CORE_MAGIC, SelectorGetLatency, UI, plugin, &late);
    float samples[BlockFrames];
    float* channels[] = {samples};
    uint32_t owed = late;
    uint32_t frames = 0;
    do {
        frames = (uint32_t)fread(samples, sizeof(float), BlockFrames, stdin);
        for (; frames < BlockFrames && owed > 0; --owed) {
            samples[frames++] = 0; /* silence after the end pushes out what is still inside */
        }
        ProcessRecord block = {.frames = frames, .channels = channels};
        entry(PLUGIN_CORE_MAGIC, SelectorProcess, Process, plugin, &block);
        const uint32_t skipped = late < frames ? late : frames; /* silence from before the begin */
        fwrite(samples + skipped, sizeof(float), frames - skipped, stdout);
        late -= skipped;
    } while (frames > 0);
}

int main(int argc, char** argv)
{
    void* module = argc == 2 || argc == 4 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    PluginCoreEntryFunction entry = NULL;
    if (module != NULL) {
        *(void**)&entry = dlsym(module, PLUGIN_CORE_ENTRY_NAME);
    }
    /* A host without a callback counts as one that refuses every question. */
    PluginCore* plugin = NULL;
    CreateRecord create = {.instance = &plugin, .sampleRate = Rate, .channelConfig = 0};
    if (entry == NULL ||
        entry(PLUGIN_CORE_MAGIC, SelectorCreatePlugin, UI, NULL, &create) != PluginCoreSuccess) {
        fputs("usage: host MODULE [START END]\n", stderr);
        return 1;
    }
    entry(PLUGIN_CORE_MAGIC, SelectorInitialize, UI, plugin, NULL);
    ParamValueRecord strength = {.index = 1, .value = 0.8F}; /* normalised: 8 of 0 to 10 */
    entry(PLUGIN_CORE_MAGIC, SelectorSetAutomatableParamValue, UI, plugin, &strength);
    int isDone = 1;
    if (argc == 4) {
        isDone = RepairRegion(entry, plugin, strtod(argv[2], NULL), strtod(argv[3], NULL));
    } else {
        RepairAll(entry, plugin);
    }

    entry(PLUGIN_CORE_MAGIC, SelectorTerminate, UI, plugin, NULL);
    entry(PLUGIN_CORE_MAGIC, SelectorDestroyPlugin, UI, plugin, NULL);
    return fflush(stdout) == 0 && isDone ? 0 : 1;
}
