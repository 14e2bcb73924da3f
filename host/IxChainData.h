#pragma once

#include <QObject>

#include "tarnCoreGlobal.h"

/// Base of the objects that travel down the host's processing chain. Receivers find out with
/// `qobject_cast` what they were given.
class TARNCORE_EXPORT IxChainData : public QObject
{
    Q_OBJECT

public:
    IxChainData();
    ~IxChainData() override;
};
