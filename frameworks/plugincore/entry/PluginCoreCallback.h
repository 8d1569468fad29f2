/* SPDX-License-Identifier: ISC
 *
 * The binary protocol between the module and whatever loads it: one exported function in, one host
 * callback out, and the plain records that both carry. Compiles as C11 and as C++; a wrapper
 * includes this header and needs nothing else of this project.
 *
 * Layout: 64-bit, native byte order, natural alignment. Texts are UTF-8 and NUL-terminated. Bool
 * fields are 0 or 1. Members named `reserved` are written as zero and not read.
 *
 * Threads: each call names a side as its context, see PluginCoreContext. One thread at a time acts
 * for each; both may call at once.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCORECALLBACK_H
#define PLUGINCORE_ENTRY_PLUGINCORECALLBACK_H

#include "PluginCoreEditor.h"
#include "PluginCoreInstance.h"
#include "PluginCoreParams.h"
#include "PluginCoreProtocol.h"
#include "PluginCoreRender.h"
#include "PluginCoreSignal.h"
#include "PluginCoreState.h"

#include "PluginCoreLayout.h" /* last: it looks at all records */

#endif
