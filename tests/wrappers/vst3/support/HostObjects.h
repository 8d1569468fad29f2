// SPDX-License-Identifier: ISC
#pragma once

#include "tests/wrappers/vst3/support/Vst3Interfaces.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <limits>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace Vst3Host {

/// What the host makes, and keeps: references are counted only for a test to look at.
template <typename... Interfaces>
class HostObject : public Interfaces... {
public:
    uint32_t AddRef() override { return ++references; }
    uint32_t Release() override { return --references; }
    int32_t QueryInterface(const uint8_t*, void** object) override
    {
        *object = nullptr;
        return V3_NO_INTERFACE;
    }

    uint32_t references = 1;
};

/// A file in memory that moves at most `most` bytes a call, and takes `room` in all.
class Stream final : public HostObject<IStream> {
public:
    explicit Stream(std::vector<uint8_t> newBytes = {},
                    int32_t newMost = std::numeric_limits<int32_t>::max())
        : bytes(std::move(newBytes))
        , most(newMost)
    {
    }

    int32_t Read(void* buffer, int32_t size, int32_t* read) override
    {
        const auto left = static_cast<int32_t>(bytes.size() - place);
        *read = std::min({size, most, left});
        std::copy_n(bytes.data() + place, *read, static_cast<uint8_t*>(buffer));
        place += static_cast<size_t>(*read);
        return *read > 0 ? V3_OK : V3_FALSE;
    }
    int32_t Write(void* buffer, int32_t size, int32_t* written) override
    {
        *written = static_cast<int32_t>(
            std::min({static_cast<size_t>(size), static_cast<size_t>(most), room - bytes.size()}));
        const auto* const from = static_cast<const uint8_t*>(buffer);
        bytes.insert(bytes.end(), from, from + *written);
        return *written > 0 ? V3_OK : V3_FALSE;
    }
    int32_t Seek(int64_t, int32_t, int64_t*) override { return V3_NOT_IMPLEMENTED; }
    int32_t Tell(int64_t*) override { return V3_NOT_IMPLEMENTED; }

    std::vector<uint8_t> bytes;
    int32_t most;
    size_t room = size_t{1} << 30U;
    size_t place = 0;
};

struct Point {
    int32_t offset;
    double value;
};

class ValueQueue final : public HostObject<IValueQueue> {
public:
    explicit ValueQueue(uint32_t newId)
        : id(newId)
    {
    }
    uint32_t GetId() override { return id; }
    int32_t CountPoints() override { return static_cast<int32_t>(points.size()); }
    int32_t GetPoint(int32_t index, int32_t* offset, double* value) override
    {
        if (index < 0 || index >= CountPoints()) {
            return V3_INVALID_ARG;
        }
        *offset = points[static_cast<size_t>(index)].offset;
        *value = points[static_cast<size_t>(index)].value;
        return V3_OK;
    }
    int32_t AddPoint(int32_t offset, double value, int32_t* index) override
    {
        *index = CountPoints();
        points.push_back({offset, value});
        return V3_OK;
    }

    uint32_t id;
    std::vector<Point> points;
};

/// The changes of parameters that go with a block; a null queue stands for a host that miscounts.
class Changes final : public HostObject<IParameterChanges> {
public:
    int32_t CountQueues() override { return static_cast<int32_t>(queues.size()) + missing; }
    IValueQueue* GetQueue(int32_t index) override
    {
        const auto place = static_cast<size_t>(index);
        return place < queues.size() ? &queues[place] : nullptr;
    }
    IValueQueue* AddQueue(const uint32_t* id, int32_t* index) override
    {
        if (isFull) {
            return nullptr;
        }
        *index = static_cast<int32_t>(queues.size());
        return &Add(*id, {});
    }
    ValueQueue& Add(uint32_t id, std::vector<Point> points)
    {
        queues.emplace_back(id).points = std::move(points);
        return queues.back();
    }

    std::deque<ValueQueue> queues; // stay where they are
    int32_t missing = 0;
    bool isFull = false; // takes nothing from the plug-in
};

/// The host's side of the conversation: context, run loop and handler in one object.
class Host final : public HostObject<IComponentHandler>,
                   private HostObject<IComponentHandler2>,
                   private HostObject<IRunLoop> {
public:
    /// As a context or a handler.
    IUnknown* Get() { return static_cast<HostObject<IComponentHandler>*>(this); }

    /// Lets the timers of the run loop come due.
    void Tick()
    {
        for (ITimerHandler* timer : std::vector(timers)) {
            timer->OnTimer();
        }
    }

    uint32_t CountReferences() const
    {
        return HostObject<IComponentHandler>::references +
               HostObject<IComponentHandler2>::references + HostObject<IRunLoop>::references - 3;
    }

    bool hasRunLoop = true;
    std::vector<ITimerHandler*> timers;
    std::vector<std::string> heard;
    std::thread::id lastThread;

private:
    int32_t QueryInterface(const uint8_t* iid, void** object) override
    {
        *object = nullptr;
        if (v3_tuid_match(iid, v3_component_handler_iid)) {
            *object = static_cast<IComponentHandler*>(this);
        } else if (v3_tuid_match(iid, v3_component_handler2_iid)) {
            *object = static_cast<IComponentHandler2*>(this);
        } else if (v3_tuid_match(iid, v3_run_loop_iid) && hasRunLoop) {
            *object = static_cast<IRunLoop*>(this);
        }
        if (*object == nullptr) {
            return V3_NO_INTERFACE;
        }
        static_cast<IUnknown*>(*object)->AddRef();
        return V3_OK;
    }

    int32_t Hear(const std::string& text)
    {
        heard.push_back(text);
        lastThread = std::this_thread::get_id();
        return V3_OK;
    }
    int32_t BeginEdit(uint32_t id) override { return Hear("begin " + std::to_string(id)); }
    int32_t PerformEdit(uint32_t id, double value) override
    {
        return Hear("perform " + std::to_string(id) + " " + std::to_string(value));
    }
    int32_t EndEdit(uint32_t id) override { return Hear("end " + std::to_string(id)); }
    int32_t RestartComponent(int32_t flags) override
    {
        return Hear("restart " + std::to_string(flags));
    }
    int32_t SetDirty(uint8_t state) override { return Hear("dirty " + std::to_string(state)); }
    int32_t RequestOpenEditor(const char*) override { return V3_NOT_IMPLEMENTED; }
    int32_t StartGroupEdit() override { return V3_NOT_IMPLEMENTED; }
    int32_t FinishGroupEdit() override { return V3_NOT_IMPLEMENTED; }
    int32_t RegisterEventHandler(IUnknown*, int) override { return V3_NOT_IMPLEMENTED; }
    int32_t UnregisterEventHandler(IUnknown*) override { return V3_NOT_IMPLEMENTED; }
    int32_t RegisterTimer(ITimerHandler* timer, uint64_t) override
    {
        timers.push_back(timer);
        return V3_OK;
    }
    int32_t UnregisterTimer(ITimerHandler* timer) override
    {
        std::erase(timers, timer);
        return V3_OK;
    }
};

} // namespace Vst3Host
