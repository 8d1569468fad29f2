/* SPDX-License-Identifier: ISC
 *
 * The least that a host of the module does: cc -I PREFIX/include/puffguard host.c -ldl
 * Reads mono 32-bit floats at 48 kHz from standard input and writes them repaired and in step.
 *     sox talk.wav -r 48k -c 1 -t f32 - | ./host LMPuffguard.so | sox -r 48k -c 1 -t f32 - out.wav
 */
#include "PluginCoreCallback.h"

#include <dlfcn.h>
#include <stdio.h>

enum { Process = 0, UI = 1, BlockFrames = 512 };

int main(int argc, char** argv)
{
    void* module = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    PluginCoreEntryFunction entry = NULL;
    if (module != NULL) {
        *(void**)&entry = dlsym(module, PLUGIN_CORE_ENTRY_NAME);
    }
    /* A host without a callback counts as one that refuses every question. */
    PluginCore* plugin = NULL;
    CreateRecord create = {.instance = &plugin, .sampleRate = 48000, .channelConfig = 0};
    if (entry == NULL ||
        entry(PLUGIN_CORE_MAGIC, SelectorCreatePlugin, UI, NULL, &create) != PluginCoreSuccess) {
        fputs("usage: host MODULE\n", stderr);
        return 1;
    }
    entry(PLUGIN_CORE_MAGIC, SelectorInitialize, UI, plugin, NULL);
    ParamValueRecord strength = {.index = 1, .value = 0.8F}; /* normalised: 8 of 0 to 10 */
    entry(PLUGIN_CORE_MAGIC, SelectorSetAutomatableParamValue, UI, plugin, &strength);
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

    entry(PLUGIN_CORE_MAGIC, SelectorTerminate, UI, plugin, NULL);
    entry(PLUGIN_CORE_MAGIC, SelectorDestroyPlugin, UI, plugin, NULL);
    return fflush(stdout) == 0 ? 0 : 1;
}
