# SPDX-License-Identifier: ISC
"""The folders, and which may know which: read by check_includes.py and by tools/draw_architecture.py.

A folder that is still to come stands here already, so that its first file finds its arrows laid.
"""

UTIL, ENTRY = "frameworks/qobase/util", "frameworks/plugincore/entry"
KERNELS, SIGNAL = "frameworks/plugincore/dsp/kernels", "frameworks/plugincore/dsp/signal"
ELEMENTS, PATH = "frameworks/plugincore/dsp/elements", "frameworks/plugincore/dsp/path"
OFFLINE = "frameworks/plugincore/dsp/offline" # recordings, their regions, and how these fade
DSP = {KERNELS, SIGNAL, OFFLINE, ELEMENTS, PATH}
CONTROLLER = "frameworks/plugincore/controller"
PRESET, PRESETS = "frameworks/plugincore/preset/file", "frameworks/plugincore/preset/manager"
HISTORY, HISTORY_DIALOG = "frameworks/plugincore/ui/model/historyfile", "restoration/ui/dialog/historyfile"
DEFINITION, CORE = "frameworks/plugincore/product", "frameworks/plugincore/instance"
DISPATCH = "frameworks/plugincore/dispatch"
NETWORK = "frameworks/qobase/network"
UI = "frameworks/plugincore/ui/"
EDITOR, SERVICES = "frameworks/plugincore/editor", "frameworks/plugincore/services"
FAMILY, REPAIR = "restoration/plugin", "restoration/dsp/puffguard"
AUTO = "restoration/dsp/autorepair" # of whole recordings: the command's alone
PRODUCT = "restoration/plugin_LM_Puffguard"
COMMAND = "wrappers/cli/"
LEVEL = "PUFFGUARD_LEVEL" # stands in headers of the kernels that know the level they are compiled for

# Folder: the folders that its files may include, besides itself. The longest match counts.
ARROWS = {
    UTIL: set(),
    ENTRY: set(),
    KERNELS: set(),
    SIGNAL: {KERNELS, UTIL},
    OFFLINE: {SIGNAL, UTIL},
    ELEMENTS: {OFFLINE, SIGNAL, UTIL},
    PATH: {ELEMENTS, SIGNAL, ENTRY, UTIL},
    CONTROLLER: {ELEMENTS, UTIL},
    PRESET: {PATH, ELEMENTS, UTIL},
    PRESETS: {PRESET, UTIL},
    HISTORY: {UTIL},
    NETWORK: {UTIL},
    SERVICES: {NETWORK, UTIL},
    UI + "archive": {UTIL},
    UI + "draw": {UI + "archive", UTIL}, # knows no window
    UI + "style": {UI + "archive", UI + "draw", UTIL},
    UI + "native": {UI + "draw", UTIL},
    UI + "native/x11": {UI + "native", UI + "draw", UTIL},
    UI + "native/headless": {UI + "native", UI + "draw", UTIL},
    UI + "window": {CONTROLLER, UI + "native", UI + "style", UI + "draw", UI + "archive", UTIL},
    UI + "layout": {CONTROLLER, UI + "window", UI + "style", UI + "draw", UI + "archive", UTIL},
    UI + "rhubarb": {CONTROLLER, UI + "layout", UI + "window", UI + "native", UI + "style", UI + "draw",
                     UI + "archive", UTIL},
    HISTORY_DIALOG: {HISTORY, UTIL},
    DEFINITION: {ENTRY, UTIL},
    CORE: {DEFINITION, CONTROLLER, PRESETS, PRESET, HISTORY, PATH, ELEMENTS, OFFLINE, SIGNAL, ENTRY,
           UTIL},
    EDITOR: {CORE, DEFINITION, SERVICES, HISTORY, CONTROLLER, PRESETS, PRESET, ENTRY, UTIL,
             UI + "rhubarb", UI + "layout", UI + "window", UI + "native", UI + "style", UI + "draw",
             UI + "archive"},
    DISPATCH: {CORE, DEFINITION, ENTRY, UTIL},
    FAMILY: {PRESET, PATH, ELEMENTS, UTIL},
    AUTO: {SIGNAL, KERNELS, UTIL},
    REPAIR: {PATH, ELEMENTS, OFFLINE, SIGNAL, KERNELS, ENTRY, UTIL},
    PRODUCT: {DISPATCH, DEFINITION, CORE, FAMILY, REPAIR, HISTORY_DIALOG, PRESET, UTIL},
    "wrappers/common": {ENTRY}, # the one wrapper that fills the records of the entry
    # UTIL for EditDistance.h: plain arithmetic on texts, whole in its header, so that nothing of the
    # module is linked.
    COMMAND + "text": {"wrappers/common", UTIL},
    COMMAND + "files": {"wrappers/common"},
    COMMAND + "audio": {COMMAND + "files", COMMAND + "text", "wrappers/common"},
    COMMAND + "effect": {COMMAND + "files", COMMAND + "text", "wrappers/common"},
    COMMAND + "report": {COMMAND + "files", COMMAND + "text", "wrappers/common"},
    COMMAND + "plot": {COMMAND + "files", COMMAND + "report"},
    COMMAND + "autorepair": {COMMAND + "audio", COMMAND + "files", COMMAND + "report", COMMAND + "text",
                             "wrappers/common", AUTO},
    COMMAND + "regions": {COMMAND + "autorepair", COMMAND + "files", COMMAND + "text", "wrappers/common"},
    COMMAND + "page": {COMMAND + "files", COMMAND + "plot", COMMAND + "text", UTIL},
    COMMAND + "run": {COMMAND + "audio", COMMAND + "autorepair", COMMAND + "effect", COMMAND + "files",
                      COMMAND + "page", COMMAND + "plot", COMMAND + "regions", COMMAND + "report",
                      COMMAND + "text", "wrappers/common", AUTO},
    "wrappers/lv2": {"wrappers/common"},
    "wrappers/clap": {"wrappers/common"},
    "wrappers/vst3": {"wrappers/common"},
}
EVERYTHING = set(ARROWS) | {"tests/support"}
ARROWS |= {
    # These act as hosts of the finished module, and know no more than a host does.
    "tests/contract": {ENTRY, "tests/support"},
    "tests/realtime": {ENTRY, UTIL, "tests/contract", "tests/support"}, # UTIL for the names of locks
    "tests/support": EVERYTHING,
    # They lend their hosts to the contract, and watch runs of their own.
    "tests/wrappers": EVERYTHING | {"tests/contract", "tests/realtime"},
    "tests": EVERYTHING,
    "bench": EVERYTHING,
    "tools": EVERYTHING,
}

WITHOUT_LIBRARIES = ("frameworks/", "restoration/")
# Operating system and processor headers, for sources only: the seams towards a platform.
PLATFORM = {
    UTIL: {"xmmintrin.h", "emmintrin.h", "dlfcn.h", "fcntl.h", "pthread.h", "pwd.h", "sched.h",
           "sys/file.h", "sys/random.h", "sys/resource.h", "sys/stat.h", "unistd.h"},
    CORE: {"dlfcn.h"},
    UI + "native/x11": {"sys/ipc.h", "sys/shm.h", "poll.h", "unistd.h"},
}
# Libraries that a folder's sources may use.
LIBRARIES = {
    UTIL: ("json/", "pugixml.hpp", "zlib.h"),
    ELEMENTS: ("boost/signals2/",),
    CONTROLLER: ("boost/signals2/",),
    PRESETS: ("boost/signals2/",),
    CORE: ("boost/signals2/",),
    UI + "archive": ("png.h",),
    UI + "draw": ("agg_", "ft2build.h", "freetype/", "fontconfig/"),
    UI + "native/x11": ("xcb/", "xkbcommon/"),
}
# What a folder may name without including it, above its arrows: "Namespace::Name", with the reason.
KNOTS = {
    # An element makes the controllers of its parameters through a factory that its host hands in.
    ELEMENTS: {"Controller::BoolParam", "Controller::EnumParam", "Controller::FloatParam",
               "Controller::StringParam",
               # Elements hand the host's record on to whoever knows the entry.
               "TransportRecord"},
    # A product's set hands out what its presets are read and written by.
    PATH: {"Preset::PresetDSPInterfaceBase", "Preset::PresetMetadataBase"},
}
