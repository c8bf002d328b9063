#pragma once

#include "Model.h"

#include <QtCore/QStringList>
#include <QtCore/QUuid>

class HostedDevice;
class IPhysicalDevice;

/// What the host gave the device, or got from it, at its creation; the model cannot know it.
struct CreatedWith
{
    QUuid instanceId;
    IPhysicalDevice *physicalDevice = nullptr;
};

/// Calls all getters of the library's device except those that read a file. Each that returns another value than the
/// model expects has a line: "dpiMin: expected 100, seen 0".
QStringList differentGetters(const Model::Device &model, const CreatedWith &createdWith,
                             const HostedDevice &hosted);

/// The same for the two getters that read a file: the default profile, and the device's image, of which there is none.
QStringList differentFiles(const HostedDevice &hosted);
