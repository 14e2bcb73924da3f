#pragma once

#include <QByteArray>
#include <QList>
#include <cstring>

#include "IxVideoAccessor.h"

/// Coded frames from memory. Keeps account of what it is asked for and can be told to lie.
class CxFakeAccessor : public IxVideoAccessor
{
public:
    QList<QByteArray> frames;
    QList<int> keys;
    int last = -1; ///< what lastProcessedFrame() answers

    // The lies
    int count = -1;              ///< framesCount(); -1: the truth
    unsigned long announced = 0; ///< frameDataSize() of every frame; 0: the truth
    unsigned long reported = 0;  ///< what frameData() sets the size to; 0: the truth
    QList<int> refused;          ///< frames whose frameData() is false

    // The record
    QList<int> asked; ///< frames whose bytes were asked for

    int framesCount() override { return count >= 0 ? count : static_cast<int>(frames.size()); }

    unsigned long frameDataSize(int frame) override
    {
        if (announced != 0)
            return announced;
        return frame >= 0 && frame < frames.size() ? static_cast<unsigned long>(frames.at(frame).size()) : 0;
    }

    bool frameData(int frame, void* buffer, unsigned long& size) override
    {
        asked.append(frame);
        if (refused.contains(frame))
            return false;
        QByteArray const bytes = frames.value(frame);
        auto const length = static_cast<unsigned long>(bytes.size());
        if (length > size)
            return true; // as the loader does: the size tells
        std::memcpy(buffer, bytes.constData(), length);
        size = reported != 0 ? reported : length;
        return true;
    }

    int lastProcessedFrame() override { return last; }
    void keyFrames(QList<int>& list) override { list = keys; }
};
