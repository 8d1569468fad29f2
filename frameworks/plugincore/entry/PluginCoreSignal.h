/* SPDX-License-Identifier: ISC
 *
 * Records about the audio and what the repair has done to it. Included by PluginCoreCallback.h.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCORESIGNAL_H
#define PLUGINCORE_ENTRY_PLUGINCORESIGNAL_H

#include <stdint.h>

/** Bounds of the sample rates that can be served, in Hz. */
#define PLUGIN_CORE_LOWEST_RATE 500.0f
#define PLUGIN_CORE_HIGHEST_RATE 1.5e6f
/** What an instance takes when it is created with no rate, in Hz. */
#define PLUGIN_CORE_FALLBACK_RATE 44100.0f

/** Codes of layouts whose channels have no meaning, for any order of speakers. */
typedef enum PluginCoreChannelConfig {
    ChannelConfigMono = 0,
    ChannelConfigStereo = 1,
    ChannelConfigPlain3 = 13, /**< 3 channels; 14 is of 4 and so on */
    ChannelConfigPlain24 = 34 /**< PLUGIN_CORE_MAX_CHANNELS channels */
} PluginCoreChannelConfig;

/** SelectorSetStreamFormat. A rate or a layout that can't be served changes nothing. */
typedef struct StreamFormatRecord {
    float sampleRate; /**< Hz */
    uint32_t channelConfig;
} StreamFormatRecord;

/** SelectorSetProcessingState. */
typedef struct ProcessingStateRecord {
    int32_t active;
    int32_t hold;
} ProcessingStateRecord;

/** The host's transport; members that aren't named are the wrapper's own. */
typedef struct TransportRecord {
    uint8_t reserved0[24];
    double position;         /**< samples, of the block's first frame */
    int32_t isPositionValid; /**< not 0: `position` counts */
    uint8_t reserved36[100];
} TransportRecord;

/** Beyond this, +300 dB over full scale, a sample is as much of an accident as one that is no
 * number. */
#define PLUGIN_CORE_LARGEST_SAMPLE 1e15f

/**
 * SelectorProcess: one block, in place. Samples that are no finite numbers, or beyond
 * PLUGIN_CORE_LARGEST_SAMPLE, count as 0.
 */
typedef struct ProcessRecord {
    uint32_t frames; /**< any number; 0 does nothing */
    uint32_t reserved4;
    float** channels;           /**< one pointer a channel of the stream format */
    TransportRecord* transport; /**< may be null: no valid position */
    uint32_t sideBusCount;      /**< at most PLUGIN_CORE_MAX_SIDE_BUSES */
    uint32_t eventCount;
    uint8_t events[128];
    float** sideBuses[16];
    uint32_t sideBusChannels[16];
    int32_t renderFlagA;
    int32_t renderFlagB; /**< not 0: blocks carry no position */
} ProcessRecord;

/** SelectorProcessSidePass. */
typedef struct SidePassRecord {
    uint32_t frames;
    uint32_t reserved;
    void* first;
    void* second;
} SidePassRecord;

/** What SelectorTransformQuery may ask for; any other value stays as it is. */
typedef enum PluginCoreTransformQuery {
    /**
     * By how many samples the bypass delays the input, and PLUGIN_CORE_BYPASS_IS_ON. What waits for
     * the next block is taken in first.
     */
    TransformQueryBypass = 0x42595053,
    /** Most samples that this delay can come to in the stream format. */
    TransformQueryLongestDelay = 0x42594C44
} PluginCoreTransformQuery;

/** TransformQueryBypass: this bit is set while the bypass is on. */
#define PLUGIN_CORE_BYPASS_IS_ON 0x80000000u

/**
 * What SelectorTransformNotify takes: which way the audio goes from the next block on. Any other
 * value does nothing. The module switches hard, and the repair begins anew with one latency of
 * silence; a host that fades from one to the other asks for the bypass and chooses the way itself.
 */
typedef enum PluginCoreTransformNotice {
    TransformNoticeFollowBypass = 0x42595730, /**< what the bypass says, as it is from the start */
    TransformNoticeRepair = 0x42595731,       /**< through the repair, whatever the bypass says */
    TransformNoticePassBy = 0x42595732        /**< past the repair, whatever the bypass says */
} PluginCoreTransformNotice;

/** What TransformReadRecord.request may ask for. */
typedef enum PluginCoreTransformRead {
    TransformReadDetections = 1, /**< the buffer is an array of DetectionRecord */
    TransformReadTotals = 2      /**< the buffer is one DetectionTotalsRecord */
} PluginCoreTransformRead;

/**
 * SelectorTransformRead.
 *
 * TransformReadDetections gives the repairs that the instance has made, oldest first. The list is
 * bounded: a reader that stays away longer than 1024 repairs loses the oldest, which shows as a
 * jump of `number`. Any thread may read while audio runs; nothing is removed by reading. A position
 * that no repair has reached yet gives nothing until one does.
 */
typedef struct TransformReadRecord {
    uint32_t request;     /**< PluginCoreTransformRead */
    uint32_t capacity;    /**< records that the buffer takes */
    uint32_t recordBytes; /**< size of one record as the caller knows it; must match */
    uint32_t reserved12;
    void* buffer;
    uint32_t position; /**< in: number of the first detection wanted; out: of the next one */
    int32_t flag;      /**< out: 1 while more wait */
    uint32_t answered; /**< out: 1 when the request was understood */
    uint32_t count;    /**< out: records written */
} TransformReadRecord;

/**
 * One repair. Positions are centres of analysis frames, in samples of the input since the repair
 * last restarted (creation, reset, end of bypass, new format or latency); they may be negative.
 * The energies are sums of squared spectral magnitudes over all channels, the frames of the region
 * and the bins from 20 to 150 Hz.
 */
typedef struct DetectionRecord {
    uint32_t number;  /**< running number, from 0 */
    uint32_t restart; /**< how often the repair had restarted */
    int64_t centre;   /**< samples */
    int64_t start;    /**< samples, first frame of the region */
    int64_t end;      /**< samples, last frame of the region */
    float severity;   /**< 0 to 1 */
    float pitchHz;    /**< 0: unvoiced */
    float detection;  /**< detection value of the centre frame */
    float threshold;  /**< what it had to exceed */
    double energyBefore;
    double energyAfter;
    uint32_t hop;         /**< number of the hop in which the repair was made, from 0 */
    uint32_t regionStart; /**< index into the detection history, 0 the oldest */
    uint32_t regionEnd;
    uint32_t repairedBins; /**< bins below the upper limit of the repair */
} DetectionRecord;

/** Sums over all frames since the repair last restarted. */
typedef struct DetectionTotalsRecord {
    uint64_t hops;     /**< that have come in; the latest one's energy may still be missing */
    double bandEnergy; /**< before any repair; units of DetectionRecord.energyBefore */
    uint32_t restart;
    uint32_t detections; /**< number that the next repair will get */
} DetectionTotalsRecord;

/** SelectorLoadTransformData. */
typedef struct TransformDataRecord {
    uint8_t failed; /**< out */
    uint8_t reserved1[3];
    uint32_t size; /**< bytes */
    void* data;
} TransformDataRecord;

#endif
