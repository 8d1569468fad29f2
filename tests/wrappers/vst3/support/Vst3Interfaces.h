// SPDX-License-Identifier: ISC
#pragma once

#include <travesty/audio_processor.h>
#include <travesty/component.h>
#include <travesty/edit_controller.h>
#include <travesty/factory.h>
#include <travesty/view.h>

#include <cstdint>

/// The format's interfaces as C++ hosts see them: classes whose tables of virtual functions are the
/// tables that the plug-in hands out. The records are those of its C headers.
namespace Vst3Host {

class IUnknown {
public:
    virtual int32_t QueryInterface(const uint8_t* iid, void** object) = 0;
    virtual uint32_t AddRef() = 0;
    virtual uint32_t Release() = 0;

protected:
    ~IUnknown() = default;
};

class IStream : public IUnknown {
public:
    virtual int32_t Read(void* buffer, int32_t size, int32_t* read) = 0;
    virtual int32_t Write(void* buffer, int32_t size, int32_t* written) = 0;
    virtual int32_t Seek(int64_t place, int32_t mode, int64_t* result) = 0;
    virtual int32_t Tell(int64_t* place) = 0;
};

class IPluginBase : public IUnknown {
public:
    virtual int32_t Initialize(IUnknown* context) = 0;
    virtual int32_t Terminate() = 0;
};

class IFactory : public IUnknown {
public:
    virtual int32_t GetFactoryInfo(v3_factory_info* info) = 0;
    virtual int32_t CountClasses() = 0;
    virtual int32_t GetClassInfo(int32_t index, v3_class_info* info) = 0;
    virtual int32_t CreateInstance(const uint8_t* classId, const uint8_t* iid, void** object) = 0;
    virtual int32_t GetClassInfo2(int32_t index, v3_class_info_2* info) = 0;
    virtual int32_t GetClassInfoUnicode(int32_t index, v3_class_info_3* info) = 0;
    virtual int32_t SetHostContext(IUnknown* context) = 0;
};

class IComponent : public IPluginBase {
public:
    virtual int32_t GetControllerClassId(uint8_t* id) = 0;
    virtual int32_t SetIoMode(int32_t mode) = 0;
    virtual int32_t GetBusCount(int32_t media, int32_t direction) = 0;
    virtual int32_t GetBusInfo(int32_t media, int32_t direction, int32_t, v3_bus_info* info) = 0;
    virtual int32_t GetRoutingInfo(v3_routing_info* input, v3_routing_info* output) = 0;
    virtual int32_t ActivateBus(int32_t media, int32_t direction, int32_t index, uint8_t on) = 0;
    virtual int32_t SetActive(uint8_t state) = 0;
    virtual int32_t SetState(IStream* stream) = 0;
    virtual int32_t GetState(IStream* stream) = 0;
};

class IAudioProcessor : public IUnknown {
public:
    virtual int32_t SetBusArrangements(uint64_t* inputs, int32_t, uint64_t* outputs, int32_t) = 0;
    virtual int32_t GetBusArrangement(int32_t direction, int32_t index, uint64_t* mask) = 0;
    virtual int32_t CanProcessSampleSize(int32_t size) = 0;
    virtual uint32_t GetLatencySamples() = 0;
    virtual int32_t SetupProcessing(v3_process_setup* setup) = 0;
    virtual int32_t SetProcessing(uint8_t state) = 0;
    virtual int32_t Process(v3_process_data* data) = 0;
    virtual uint32_t GetTailSamples() = 0;
};

class IEditController : public IPluginBase {
public:
    virtual int32_t SetComponentState(IStream* stream) = 0;
    virtual int32_t SetState(IStream* stream) = 0;
    virtual int32_t GetState(IStream* stream) = 0;
    virtual int32_t GetParameterCount() = 0;
    virtual int32_t GetParameterInfo(int32_t index, v3_param_info* info) = 0;
    virtual int32_t GetStringByValue(uint32_t id, double value, int16_t* text) = 0;
    virtual int32_t GetValueByString(uint32_t id, int16_t* text, double* value) = 0;
    virtual double ToPlain(uint32_t id, double normalised) = 0;
    virtual double ToNormalised(uint32_t id, double plain) = 0;
    virtual double GetValue(uint32_t id) = 0;
    virtual int32_t SetValue(uint32_t id, double value) = 0;
    virtual int32_t SetComponentHandler(IUnknown* handler) = 0;
    virtual void* CreateView(const char* name) = 0;
};

class IComponentHandler : public IUnknown {
public:
    virtual int32_t BeginEdit(uint32_t id) = 0;
    virtual int32_t PerformEdit(uint32_t id, double value) = 0;
    virtual int32_t EndEdit(uint32_t id) = 0;
    virtual int32_t RestartComponent(int32_t flags) = 0;
};

class IComponentHandler2 : public IUnknown {
public:
    virtual int32_t SetDirty(uint8_t state) = 0;
    virtual int32_t RequestOpenEditor(const char* name) = 0;
    virtual int32_t StartGroupEdit() = 0;
    virtual int32_t FinishGroupEdit() = 0;
};

class ITimerHandler : public IUnknown {
public:
    virtual void OnTimer() = 0;
};

class IRunLoop : public IUnknown {
public:
    virtual int32_t RegisterEventHandler(IUnknown* handler, int file) = 0;
    virtual int32_t UnregisterEventHandler(IUnknown* handler) = 0;
    virtual int32_t RegisterTimer(ITimerHandler* handler, uint64_t milliseconds) = 0;
    virtual int32_t UnregisterTimer(ITimerHandler* handler) = 0;
};

class IValueQueue : public IUnknown {
public:
    virtual uint32_t GetId() = 0;
    virtual int32_t CountPoints() = 0;
    virtual int32_t GetPoint(int32_t index, int32_t* offset, double* value) = 0;
    virtual int32_t AddPoint(int32_t offset, double value, int32_t* index) = 0;
};

class IParameterChanges : public IUnknown {
public:
    virtual int32_t CountQueues() = 0;
    virtual IValueQueue* GetQueue(int32_t index) = 0;
    virtual IValueQueue* AddQueue(const uint32_t* id, int32_t* index) = 0;
};

/// What the user does in a view of the host's own.
class IHostEditing : public IUnknown {
public:
    virtual int32_t BeginEditFromHost(uint32_t id) = 0;
    virtual int32_t EndEditFromHost(uint32_t id) = 0;

protected:
    ~IHostEditing() = default;
};

} // namespace Vst3Host
