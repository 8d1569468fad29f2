/* SPDX-License-Identifier: ISC
 *
 * Records about repairing regions of a recording. Included by PluginCoreCallback.h.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCORERENDER_H
#define PLUGINCORE_ENTRY_PLUGINCORERENDER_H

#include "PluginCoreSignal.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Message of SelectorHostMessage with context 1: repairs regions of a recording; data:
 * RenderRecord.
 *
 * The call returns when all is done, and may take long: it is for a thread of the host's own. It
 * works on elements of its own that have the values of the instance's, as the user has them when it
 * begins, and in its stream format. So audio and user interface go on meanwhile, on their threads,
 * and the instance is afterwards as it would be without. Only one such call may be under way for an
 * instance. A new stream format and SelectorDestroyPlugin, from other threads, end it at the next
 * block; the latter waits until it has returned. No callback of it may call SelectorDestroyPlugin.
 *
 * While the bypass is on there is nothing to repair, so that nothing is written.
 */
#define PLUGIN_CORE_MESSAGE_RENDER 0x5075526Eu

/** A rectangle of time and frequency that is repaired. What lies outside the recording is left out;
 * all of it is an error. */
typedef struct RenderRegionRecord {
    int64_t first; /**< frame */
    int64_t last;  /**< frame, at least `first` */
    float lowHz;   /**< 0: no lower bound */
    float highHz;  /**< above lowHz; 0: no upper bound, as from half the rate on */
} RenderRegionRecord;

/**
 * Fills `channels`, one array of `frames` floats a channel of the stream format, with the frames
 * from `position` on, all of which lie in the recording. Positions run forward, but for the way
 * back to some seconds before the next region. Answers 0 for success.
 */
typedef uint32_t (*PluginCoreRenderRead)(void* refcon,
                                         int64_t position,
                                         uint32_t frames,
                                         float* const* channels);
/**
 * Takes what the frames from `position` on have become. Positions rise, no frame comes twice, and
 * all frames of the regions come, with those of the fades at their edges; whatever doesn't come
 * stays as it is. Answers 0 for success.
 */
typedef uint32_t (*PluginCoreRenderWrite)(void* refcon,
                                          int64_t position,
                                          uint32_t frames,
                                          const float* const* channels);
/**
 * After each block: `done` goes from 0 to 1 and never back; `text`, in UTF-8, is what is being done
 * and belongs to the call alone. Any other answer than 0 cancels.
 */
typedef uint32_t (*PluginCoreRenderProgress)(void* refcon, double done, const char* text);
/** A repair within the regions. Its positions are frames of the recording. */
typedef void (*PluginCoreRenderRepair)(void* refcon, const DetectionRecord* repair);

/** How rendering has ended. */
typedef enum PluginCoreRenderResult {
    RenderDone = 0,
    RenderCancelled = 1,    /**< by the host's progress function */
    RenderSourceFailed = 2, /**< by the host's read function */
    RenderSinkFailed = 3,   /**< by the host's write function */
    RenderBadRegion = 4,    /**< nothing was begun; `failedRegion` is the region's index */
    RenderBusy = 5,         /**< nothing was begun: another call is under way */
    RenderStopped = 6,      /**< the stream format has changed, or the instance ends */
    RenderFailed = 7        /**< there was no memory, or a number in the record makes no sense */
} PluginCoreRenderResult;

/**
 * PLUGIN_CORE_MESSAGE_RENDER. The call answers PluginCoreSuccess whenever the record is whole and
 * the pointers that it must hold aren't null; `result` is how the rendering went.
 *
 * Each edge of a region is a fade between what is repaired and what is not, centred on it and at
 * most half as long as the region. Where a region ends with the recording there is none. Regions
 * that overlap or touch are repaired together. Of a region that is bounded in frequency the repair
 * gets the band alone, and only what it changes there is added to the recording.
 *
 * Samples that are no finite numbers, or beyond PLUGIN_CORE_LARGEST_SAMPLE, count as 0.
 */
typedef struct RenderRecord {
    uint32_t recordBytes; /**< sizeof(RenderRecord) as the caller knows it; must match */
    uint32_t regionBytes; /**< sizeof(RenderRegionRecord), likewise */
    int64_t frames;       /**< of the recording */
    const RenderRegionRecord* regions; /**< in any order; may be null when there are none */
    uint32_t regionCount;
    float fadeMilliseconds; /**< at the edges of regions, 0 to 10000 */
    void* refcon;           /**< handed back with each callback */
    PluginCoreRenderRead read;
    PluginCoreRenderWrite write;
    PluginCoreRenderProgress progress; /**< may be null */
    PluginCoreRenderRepair repair;     /**< may be null */
    uint32_t result;                   /**< out: PluginCoreRenderResult */
    uint32_t failedRegion;             /**< out with RenderBadRegion */
    uint64_t hops;                     /**< out: what was analysed, as in DetectionTotalsRecord */
    double bandEnergy;                 /**< out, likewise */
    char message[256]; /**< out: what went wrong and why; empty when all went well */
} RenderRecord;

#ifdef __cplusplus
}
#endif

#endif
