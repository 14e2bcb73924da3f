#include "TestCamera.h"

#include <algorithm>

#include "FixedMath.h"
#include "PictureFormat.h"

namespace {

struct SxNamedFormat
{
    char const* name;
    quint32 components;
    quint32 bits;
};

SxNamedFormat const kFormats[] = {{"mono8", 1, 8}, {"mono10", 1, 10}, {"mono12", 1, 12}, {"mono16", 1, 16},
                                  {"bgr24", 3, 8}, {"bgr32", 4, 8},   {"bgr48", 3, 16},  {"bgr64", 4, 16}};

size_t const kNoiseSamples = 1 << 16;
size_t const kNoisePiece = 2048; // samples that follow each other in the table
int const kSampleMax = 65535;

/// Noise that is nearly Gaussian, with a standard deviation of 1.1 steps of an 8-bit sample.
std::vector<qint16> fx_Noise(quint64 seed)
{
    CxRandom random(seed);
    std::vector<qint16> noise;
    noise.reserve(kNoiseSamples);
    while (noise.size() < kNoiseSamples) {
        quint64 const bits = random.next();
        int sum = -4 * 127;
        for (unsigned shift = 0; shift < 32; shift += 8)
            sum += static_cast<int>(bits >> shift & 0xFF);
        noise.push_back(static_cast<qint16>(sum * 2));
    }
    return noise;
}

/// Scene samples of one row, as many as the picture has.
void fx_TakeRow(quint16 const* scene, quint32 width, quint32 components, qint32* line)
{
    if (components == 1) {
        for (quint32 x = 0; x < width; ++x, scene += 3) // luma of ITU-R BT.601 in 1024ths
            line[x] = (117 * scene[0] + 601 * scene[1] + 306 * scene[2]) >> 10;
        return;
    }
    std::copy(scene, scene + size_t{width} * 3, line);
}

void fx_AddNoise(qint32* line, size_t count, qint16 const* noise)
{
    for (size_t i = 0; i < count; ++i)
        line[i] = std::clamp(line[i] + noise[i], 0, kSampleMax);
}

/// Writes a row's samples, shifted down to their bits; a fourth component is at its highest value.
template<class Sample>
void fx_StoreRow(qint32 const* line, SxPicBuf const& picture, Sample* row)
{
    quint32 const shift = 16 - picture.bitsPerSample;
    if (picture.components != 4) {
        size_t const samples = size_t{picture.width} * picture.components;
        for (size_t i = 0; i < samples; ++i)
            row[i] = static_cast<Sample>(line[i] >> shift);
        return;
    }
    for (quint32 x = 0; x < picture.width; ++x, line += 3, row += 4) {
        row[0] = static_cast<Sample>(line[0] >> shift);
        row[1] = static_cast<Sample>(line[1] >> shift);
        row[2] = static_cast<Sample>(line[2] >> shift);
        row[3] = static_cast<Sample>(kSampleMax >> shift);
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

QString CxTestCamera::description() const { return fx_DescribeFormat(m_options.format); }

void CxTestCamera::fill(SxCanvas const& scene, SxPicBuf& picture)
{
    CxRandom random(m_options.seed ^ (static_cast<quint64>(m_frame) << 32));
    size_t const samples = size_t{picture.width} * (picture.components == 1 ? 1 : 3);
    quint16 const* sceneRow = scene.samples.data();
    for (quint32 y = 0; y < picture.height; ++y, sceneRow += size_t{picture.width} * 3) {
        fx_TakeRow(sceneRow, picture.width, picture.components, m_line.data());
        for (size_t i = 0; i < samples; i += kNoisePiece) {
            size_t const place = random.next() % (kNoiseSamples - kNoisePiece);
            fx_AddNoise(m_line.data() + i, std::min(kNoisePiece, samples - i), m_noise.data() + place);
        }
        unsigned char* const row = picture.data + size_t{y} * picture.pitch;
        if (fx_IsWordFormat(picture))
            fx_StoreRow(m_line.data(), picture, reinterpret_cast<quint16*>(row));
        else
            fx_StoreRow(m_line.data(), picture, row);
    }
}

IxPictureSource::Result CxTestCamera::next(SxPicBuf& picture)
{
    if (m_options.frames != 0 && m_frame >= m_options.frames)
        return Result::End;
    if (!fx_PreparePicture(picture, m_options.format))
        return Result::Error;
    fill(m_scene.draw(m_frame), picture);
    picture.timestamp = static_cast<quint64>(m_frame) * 1000000 / 30;
    ++m_frame;
    return Result::Picture;
}
