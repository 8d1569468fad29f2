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
#include <string.h>

enum { Process = 0, UI = 1, BlockFrames = 512, Rate = 48000 };

/* A whole recording in memory. */
typedef struct Recording {
    float* samples;
    int64_t frames;
} Recording;

static Recording read_all(void)
{
    Recording recording = {NULL, 0};
    float block[BlockFrames];
    for (size_t count = 1; count > 0; recording.frames += (int64_t)count) {
        count = fread(block, sizeof(float), BlockFrames, stdin);
        float* longer =
            realloc(recording.samples, ((size_t)recording.frames + BlockFrames) * sizeof(float));
        if (longer == NULL) {
            abort();
        }
        recording.samples = longer;
        memcpy(recording.samples + recording.frames, block, count * sizeof(float));
    }
    return recording;
}

/* The recording is read on behind what has been written, so that one copy is not enough. */
typedef struct Job {
    Recording before;
    float* after;
} Job;

static uint32_t read_frames(void* refcon, int64_t position, uint32_t frames, float* const* channels)
{
    const Job* job = refcon;
    memcpy(channels[0], job->before.samples + position, frames * sizeof(float));
    return 0;
}

static uint32_t
write_frames(void* refcon, int64_t position, uint32_t frames, const float* const* channels)
{
    const Job* job = refcon;
    memcpy(job->after + position, channels[0], frames * sizeof(float));
    return 0;
}

static uint32_t show_progress(void* refcon, double done, const char* text)
{
    (void)refcon;
    fprintf(stderr, "%3.0f %% %s\r", 100 * done, text);
    return 0; /* anything else cancels */
}

/* Takes long: a host with windows calls it on a thread of its own, while they go on. */
static int
repair_region(PluginCoreEntryFunction entry, PluginCore* plugin, double start, double end)
{
    Job job = {read_all(), NULL};
    const size_t bytes = (size_t)job.before.frames * sizeof(float);
    job.after = malloc(bytes + 1);
    if (job.after == NULL) {
        abort();
    }
    memcpy(job.after, job.before.samples, bytes);
    const RenderRegionRecord region = {.first = (int64_t)(start * Rate + 0.5),
                                       .last = (int64_t)(end * Rate + 0.5) - 1};
    RenderRecord render = {.recordBytes = sizeof render,
                           .regionBytes = sizeof region,
                           .frames = job.before.frames,
                           .regions = &region,
                           .regionCount = 1,
                           .fadeMilliseconds = 10,
                           .refcon = &job,
                           .read = read_frames,
                           .write = write_frames,
                           .progress = show_progress};
    HostMessageRecord message = {PLUGIN_CORE_MESSAGE_RENDER, sizeof render, &render};
    entry(PLUGIN_CORE_MAGIC, SelectorHostMessage, UI, plugin, &message);
    fprintf(stderr, "\n%s\n", render.message);
    fwrite(job.after, sizeof(float), (size_t)job.before.frames, stdout);
    free(job.before.samples);
    free(job.after);
    return render.result == RenderDone;
}

static void repair_all(PluginCoreEntryFunction entry, PluginCore* plugin)
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
        isDone = repair_region(entry, plugin, atof(argv[2]), atof(argv[3]));
    } else {
        repair_all(entry, plugin);
    }

    entry(PLUGIN_CORE_MAGIC, SelectorTerminate, UI, plugin, NULL);
    entry(PLUGIN_CORE_MAGIC, SelectorDestroyPlugin, UI, plugin, NULL);
    return fflush(stdout) == 0 && isDone ? 0 : 1;
}
