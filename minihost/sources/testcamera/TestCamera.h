#pragma once

#include <QStringList>
#include <optional>
#include <random>

#include "IxPictureSource.h"
#include "TestScene.h"

/// What the test camera delivers.
struct SxTestCameraOptions
{
    quint32 width = 1280;
    quint32 height = 720;
    int frames = 300;    ///< 0: without end
    quint64 seed = 1;    ///< of the noise
    SxPicBufInfo format; ///< components, sample type and bits; 8-bit blue-green-red when left empty

    static constexpr quint32 kSmallestSide = 16;
    static constexpr quint32 kLargestSide = 8192;
};

QStringList fx_TestCameraFormats(); ///< "mono8", "mono10", ... "bgr64"

/// The format with such a name, its size left open; nothing when there is none.
std::optional<SxPicBufInfo> fx_TestCameraFormat(QString const& name);

/// A camera that needs no hardware: a moving, detailed, slightly noisy scene with its frame number and
/// time written in it. The same options give the same bytes on every machine.
class CxTestCamera : public IxPictureSource
{
public:
    explicit CxTestCamera(SxTestCameraOptions const& options);

    Result next(SxPicBuf& picture) override;
    QString errorText() const override;
    int expectedPictures() const override { return m_options.frames == 0 ? -1 : m_options.frames; }
    bool hasEnd() const override { return false; }
    SxPictureRate rate() const override { return {kPicturesASecond}; }
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {}; }
    bool isDamaged() const override { return false; }

private:
    template<class Sample>
    void addNoise(std::mt19937_64& random, quint16 const* samples, size_t count, Sample* noisy) const;
    template<class Sample>
    void fillRow(std::mt19937_64& random, quint16 const* scene, Sample* row);
    void fill(SxCanvas const& scene, SxPicBuf& picture);

    SxTestCameraOptions m_options;
    CxTestScene m_scene;
    std::vector<qint16> m_noise; ///< in 16-bit steps; rows take pieces of it from random places
    std::vector<quint16> m_line; ///< one row on its way to another layout
    int m_frame = 0;
};
