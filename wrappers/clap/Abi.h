// SPDX-License-Identifier: ISC
#pragma once

#include <clap/ext/params.h>
#include <clap/plugin.h>

#include <cstdint>

/// Parts of the format that the packaged headers lack, binary compatible with the format's own.
/// Members and threads are as in those for plug-ins of version 1.2.
namespace Clap::Abi {

inline constexpr char ExtAudioPortsConfig[] = "clap.audio-ports-config";
inline constexpr char ExtLog[] = "clap.log";
inline constexpr char ExtRender[] = "clap.render";
inline constexpr char ExtTail[] = "clap.tail";
inline constexpr char ExtSurround[] = "clap.surround/4";
inline constexpr char ExtSurroundDraft[] = "clap.surround.draft/4"; ///< the same, as it began

// Types of ports: one text each, for tables that stand in several files.
inline constexpr char PortMono[] = "mono";
inline constexpr char PortStereo[] = "stereo";
inline constexpr char PortSurround[] = "surround";

/// A stepped parameter whose values have names.
inline constexpr clap_param_info_flags ParamIsEnum = 1U << 16U;

struct AudioPortsConfig {
    clap_id id;
    char name[CLAP_NAME_SIZE];
    uint32_t inputPortCount;
    uint32_t outputPortCount;
    bool hasMainInput;
    uint32_t mainInputChannelCount;
    const char* mainInputPortType;
    bool hasMainOutput;
    uint32_t mainOutputChannelCount;
    const char* mainOutputPortType;
};

struct PluginAudioPortsConfig {
    uint32_t (*count)(const clap_plugin_t* plugin);                                     ///< [main]
    bool (*get)(const clap_plugin_t* plugin, uint32_t index, AudioPortsConfig* config); ///< [main]
    bool (*select)(const clap_plugin_t* plugin, clap_id id); ///< [main, inactive]
};

enum LogSeverity : int32_t { LogError = 3 };

struct HostLog {
    void (*log)(const clap_host_t* host, int32_t severity, const char* text); ///< [any]
};

struct HostTail {
    void (*changed)(const clap_host_t* host); ///< [audio]
};

enum RenderMode : int32_t { RenderRealtime = 0, RenderOffline = 1 };

struct PluginRender {
    bool (*hasHardRealtimeRequirement)(const clap_plugin_t* plugin); ///< [main]
    bool (*set)(const clap_plugin_t* plugin, int32_t mode);          ///< [main]
};

struct PluginTail {
    uint32_t (*get)(const clap_plugin_t* plugin); ///< samples [main, audio]
};

/// Numbers of speakers.
enum Speaker : uint8_t {
    FrontLeft = 0,
    FrontRight = 1,
    FrontCenter = 2,
    LowFrequency = 3,
    BackLeft = 4,
    BackRight = 5,
    SideLeft = 9,
    SideRight = 10
};

struct PluginSurround {
    bool (*isChannelMaskSupported)(const clap_plugin_t* plugin, uint64_t mask); ///< [main]
    uint32_t (*getChannelMap)(const clap_plugin_t* plugin,
                              bool isInput,
                              uint32_t port,
                              uint8_t* map,
                              uint32_t capacity); ///< [main]
};

} // namespace Clap::Abi
