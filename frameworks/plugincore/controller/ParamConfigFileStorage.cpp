// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/ParamConfigFileStorage.h"

namespace Controller {
namespace {

float Read(const Util::ConfigFile& file, const String& key, float present)
{
    return file.ReadFloat(key, present);
}

uint32_t Read(const Util::ConfigFile& file, const String& key, uint32_t present)
{
    return file.ReadUInt(key, present);
}

bool Read(const Util::ConfigFile& file, const String& key, bool present)
{
    return file.ReadBool(key, present);
}

String Read(const Util::ConfigFile& file, const String& key, const String& present)
{
    return file.ReadString(key, present);
}

void Write(Util::ConfigFile& file, const String& key, float value)
{
    file.WriteFloat(key, value);
}

void Write(Util::ConfigFile& file, const String& key, uint32_t value)
{
    file.WriteUInt(key, value);
}

void Write(Util::ConfigFile& file, const String& key, bool value)
{
    file.WriteBool(key, value);
}

void Write(Util::ConfigFile& file, const String& key, const String& value)
{
    file.WriteString(key, value);
}

} // namespace

template <typename T>
ParamConfigFileStorage<T>::ParamConfigFileStorage(Util::ConfigFile& newFile,
                                                  String newKey,
                                                  T initialValue)
    : ParamMemoryStorage<T>(std::move(initialValue))
    , file(newFile)
    , key(std::move(newKey))
{
}

template <typename T>
void ParamConfigFileStorage<T>::Store(const T& newValue)
{
    if (!isWritingSuspended && this->Load() != newValue) {
        Write(file, key, newValue);
    }
    ParamMemoryStorage<T>::Store(newValue);
}

template <typename T>
void ParamConfigFileStorage<T>::LoadFromFile()
{
    ParamMemoryStorage<T>::Store(Read(file, key, this->Load()));
}

template class ParamConfigFileStorage<float>;
template class ParamConfigFileStorage<uint32_t>;
template class ParamConfigFileStorage<bool>;
template class ParamConfigFileStorage<String>;

} // namespace Controller
