#include "TestCamera.h"

#include <algorithm>

#include "PictureFormat.h"
#include "PictureRate.h"

namespace {

struct SxNamedFormat
{
    char const* name;
    quint32 components;
    quint32 bits;
};

SxNamedFormat const kFormats[] = {{"mono8", 1, 8}, {"mono10", 1, 10}, {"mono12", 1, 12}, {"mono16", 1, 16},
                                  {"bgr24", 3, 8}, {"bgr32", 4, 8},   {"bgr48", 3, 16},  {"bgr64", 4, 16}};

constexpr size_t kNoiseSamples = 1 << 16;
constexpr size_t kNoisePiece = 2048; // samples that follow each other in the table
constexpr int kSampleMax = 65535;

/// Noise that is nearly Gaussian, with a standard deviation of 1.1 steps of an 8-bit sample. The standard
/// fixes what its engines give; what its distributions make of that differs between libraries.
std::vector<qint16> fx_Noise(quint64 seed)
{
    std::mt19937_64 random(seed);
    std::vector<qint16> noise;
    noise.reserve(kNoiseSamples);
    while (noise.size() < kNoiseSamples) {
        quint64 const bits = random();
        int sum = -4 * 127;
        for (unsigned shift = 0; shift < 32; shift += 8)
            sum += static_cast<int>(bits >> shift & 0xFF);
        noise.push_back(static_cast<qint16>(sum * 2));
    }
    return noise;
}

/// Luma of ITU-R BT.601, in 1024ths, of \p width pixels.
void fx_ToGrey(quint16 const* scene, size_t width, quint16* grey)
{
    for (size_t x = 0; x < width; ++x, scene += 3)
        grey[x] = static_cast<quint16>((117 * scene[0] + 601 * scene[1] + 306 * scene[2]) >> 10);
}

/// Samples with noise, shifted down to their bits.
template<class Sample>
void fx_AddNoise(quint16 const* samples, qint16 const* noise, size_t count, quint32 shift, Sample* noisy)
{
    for (size_t i = 0; i < count; ++i)
        noisy[i] = static_cast<Sample>(std::clamp(samples[i] + noise[i], 0, kSampleMax) >> shift);
}

/// Pixels of three samples as pixels of four, the fourth \p last.
template<class Sample>
void fx_Widen(quint16 const* samples, size_t width, Sample last, Sample* row)
{
    for (size_t x = 0; x < width; ++x, samples += 3, row += 4) {
        row[0] = static_cast<Sample>(samples[0]);
        row[1] = static_cast<Sample>(samples[1]);
        row[2] = static_cast<Sample>(samples[2]);
        row[3] = last;
    }
}

} // namespace

QStringList fx_TestCameraFormats()
{
    QStringList names;
    for (SxNamedFormat const& format : kFormats)
        names += QString::fromLatin1(format.name);
    return names;
}

std::optional<SxPicBufInfo> fx_TestCameraFormat(QString const& name)
{
    for (SxNamedFormat const& format : kFormats) {
        if (name == QLatin1String(format.name))
            return fx_PackedFormat(0, 0, format.components, format.bits);
    }
    return std::nullopt;
}

CxTestCamera::CxTestCamera(SxTestCameraOptions const& options)
    : m_options(options)
    , m_scene(static_cast<int>(options.width), static_cast<int>(options.height))
    , m_noise(fx_Noise(options.seed))
    , m_line(size_t{options.width} * 3)
{
    if (m_options.format.components == 0)
        m_options.format = fx_PackedFormat(0, 0, 3, 8);
    m_options.format.width = m_options.width;
    m_options.format.height = m_options.height;
}

QString CxTestCamera::errorText() const
{
    return QStringLiteral("The test camera has no memory for a picture.");
}

/// The noise of one row, put on \p count samples in pieces from random places.
template<class Sample>
void CxTestCamera::addNoise(std::mt19937_64& random, quint16 const* samples, size_t count,
                            Sample* noisy) const
{
    quint32 const shift = 16 - m_options.format.bitsPerSample;
    for (size_t i = 0; i < count; i += kNoisePiece) {
        size_t const place = random() % (kNoiseSamples - kNoisePiece);
        fx_AddNoise(samples + i, m_noise.data() + place, std::min(kNoisePiece, count - i), shift, noisy + i);
    }
}

template<class Sample>
void CxTestCamera::fillRow(std::mt19937_64& random, quint16 const* scene, Sample* row)
{
    size_t const width = m_options.width;
    switch (m_options.format.components) {
    case 1:
        fx_ToGrey(scene, width, m_line.data());
        addNoise(random, m_line.data(), width, row);
        break;
    case 3:
        addNoise(random, scene, width * 3, row);
        break;
    default:
        addNoise(random, scene, width * 3, m_line.data());
        fx_Widen(m_line.data(), width,
                 static_cast<Sample>(kSampleMax >> (16 - m_options.format.bitsPerSample)), row);
    }
}

void CxTestCamera::fill(SxCanvas const& scene, SxPicBuf& picture)
{
    std::mt19937_64 random(m_options.seed ^ (static_cast<quint64>(m_frame) << 32));
    quint16 const* sceneRow = scene.samples.data();
    for (quint32 y = 0; y < picture.height; ++y, sceneRow += size_t{picture.width} * 3) {
        unsigned char* const row = picture.data + size_t{y} * picture.pitch;
        if (fx_IsWordFormat(picture))
            fillRow(random, sceneRow, reinterpret_cast<quint16*>(row));
        else
            fillRow(random, sceneRow, row);
    }
}

IxPictureSource::Result CxTestCamera::next(SxPicBuf& picture)
{
    if (m_options.frames != 0 && m_frame >= m_options.frames)
        return Result::End;
    if (!fx_PreparePicture(picture, m_options.format))
        return Result::Error;
    fill(m_scene.draw(m_frame), picture);
    picture.timestamp = static_cast<quint64>(m_frame) * 1000000 / kPicturesASecond;
    ++m_frame;
    return Result::Picture;
}
