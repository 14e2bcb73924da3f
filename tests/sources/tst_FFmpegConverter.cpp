#include <QtTest>
#include <cmath>
#include <cstring>
#include <functional>

#include "FFmpegConverter.h"
#include "PictureFormat.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

/// FFmpeg's frames as the host's pictures: every sample at its depth, every colour where it was.
class tst_FFmpegConverter : public QObject
{
    Q_OBJECT

private slots:
    void wordFormatsKeepTheirSamples();
    void videoColoursFollowTheirMatrix_data();
    void videoColoursFollowTheirMatrix();
    void deepVideoStaysDeep();
    void deepVideoIsShiftedUpFromItsOwnBits();
    void deepVideoKeepsItsColourEdges_data();
    void deepVideoKeepsItsColourEdges();
};

static int const kWidth = 19; // no multiple of anything, so that rows have gaps
static int const kHeight = 5;

/// A frame of zeros; null without memory.
static FramePtr fx_Frame(AVPixelFormat format, int width, int height)
{
    FramePtr frame(av_frame_alloc());
    frame->width = width;
    frame->height = height;
    frame->format = format;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    for (AVBufferRef const* buffer : frame->buf) {
        if (buffer)
            memset(buffer->data, 0, size_t(buffer->size));
    }
    return frame;
}

/// Sets every sample of a component of YUV to \p value, a function of its column and row.
static void fx_FillPlane(AVFrame& frame, int component, std::function<int(int, int)> const& value)
{
    // FFmpeg's function adds to what is there, which is zero.
    AVPixFmtDescriptor const& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    int const width = component == 0 ? frame.width : frame.width >> format.log2_chroma_w;
    int const height = component == 0 ? frame.height : frame.height >> format.log2_chroma_h;
    std::vector<quint16> row(static_cast<size_t>(width));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            row[static_cast<size_t>(x)] = static_cast<quint16>(value(x, y));
        av_write_image_line(row.data(), frame.data, frame.linesize, &format, 0, y, component, width);
    }
}

/// A picture's samples, row after row.
static QVector<quint16> fx_SamplesOf(SxPicBuf const& picture)
{
    QVector<quint16> samples;
    for (quint32 y = 0; y < picture.height; ++y) {
        auto const* const row = reinterpret_cast<quint16 const*>(picture.data + size_t{y} * picture.pitch);
        for (quint32 i = 0; i < picture.width * picture.components; ++i)
            samples += row[i];
    }
    return samples;
}

/// Every format of FFmpeg's that is copied as words, against FFmpeg's own way to read a sample.
void tst_FFmpegConverter::wordFormatsKeepTheirSamples()
{
    unsigned const odd = AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_HWACCEL |
                         AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT;
    int formats = 0;
    for (AVPixFmtDescriptor const* format = av_pix_fmt_desc_next(nullptr); format != nullptr;
         format = av_pix_fmt_desc_next(format)) {
        bool const isGrey = format->nb_components <= 2;
        bool const isColour = (format->flags & AV_PIX_FMT_FLAG_RGB) != 0;
        if ((!isGrey && !isColour) || (format->flags & odd) != 0 || format->comp[0].depth < 9 ||
            format->comp[0].depth > 16)
            continue;
        FramePtr const frame = fx_Frame(av_pix_fmt_desc_get_id(format), kWidth, kHeight);
        QVERIFY(frame);
        for (AVBufferRef const* buffer : frame->buf) {
            for (size_t i = 0; buffer != nullptr && i < buffer->size; ++i)
                buffer->data[i] = static_cast<uint8_t>(i * 197 + i / 251);
        }
        CxOwnedPicture picture;
        QVERIFY2(CxFFmpegConverter().convert(*frame, picture.get()), format->name);

        QVector<quint16> expected(static_cast<int>(picture.get().components) * kWidth * kHeight);
        std::vector<quint16> row(size_t{kWidth});
        uint8_t const* planes[4] = {frame->data[0], frame->data[1], frame->data[2], frame->data[3]};
        int const components = static_cast<int>(picture.get().components);
        for (int y = 0; y < kHeight; ++y) {
            for (int c = 0; c < components; ++c) {
                int const component = components == 1 ? 0 : c == 3 ? 3 : 2 - c;
                av_read_image_line2(row.data(), planes, frame->linesize, format, 0, y, component, kWidth, 0,
                                    2);
                for (int x = 0; x < kWidth; ++x)
                    expected[(y * kWidth + x) * components + c] = row[static_cast<size_t>(x)];
            }
        }
        QVERIFY2(fx_SamplesOf(picture.get()) == expected, format->name);
        ++formats;
    }
    QVERIFY(formats >= 20);
}

void tst_FFmpegConverter::videoColoursFollowTheirMatrix_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<QVector<int>>("yuv");
    QTest::addColumn<QVector<int>>("bgr");
    // Limited range; ITU-R BT.601 in small pictures, BT.709 from high definition on.
    QTest::newRow("black") << 64 << 48 << QVector<int>{16, 128, 128} << QVector<int>{0, 0, 0};
    QTest::newRow("white") << 64 << 48 << QVector<int>{235, 128, 128} << QVector<int>{255, 255, 255};
    QTest::newRow("red, 601") << 64 << 48 << QVector<int>{81, 90, 240} << QVector<int>{0, 0, 254};
    QTest::newRow("red, 709") << 1280 << 720 << QVector<int>{63, 102, 240} << QVector<int>{0, 1, 255};
    QTest::newRow("blue, 709") << 1280 << 720 << QVector<int>{32, 240, 118} << QVector<int>{255, 0, 0};
}

void tst_FFmpegConverter::videoColoursFollowTheirMatrix()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(QVector<int>, yuv);
    QFETCH(QVector<int>, bgr);
    FramePtr const frame = fx_Frame(AV_PIX_FMT_YUV420P, width, height);
    QVERIFY(frame);
    for (int plane = 0; plane < 3; ++plane)
        fx_FillPlane(*frame, plane, [&](int, int) { return yuv[plane]; });
    CxOwnedPicture picture;
    QVERIFY(CxFFmpegConverter().convert(*frame, picture.get()));
    for (int i = 0; i < 3; ++i)
        QVERIFY2(std::abs(picture.get().data[i] - bgr[i]) <= 3,
                 qPrintable(QString::number(picture.get().data[i])));
}

void tst_FFmpegConverter::deepVideoStaysDeep()
{
    FramePtr const frame = fx_Frame(AV_PIX_FMT_YUV420P10, 64, 48);
    QVERIFY(frame);
    fx_FillPlane(*frame, 0, [](int x, int) { return x < 32 ? 502 : 503; }); // 64 to 940 is black to white
    fx_FillPlane(*frame, 1, [](int, int) { return 512; });
    fx_FillPlane(*frame, 2, [](int, int) { return 512; });
    CxFFmpegConverter converter;
    CxOwnedPicture picture;
    QVERIFY(converter.convert(*frame, picture.get()));
    QVERIFY(fx_IsWordFormat(picture.get()));
    QCOMPARE(picture.get().bitsPerSample, 16U);
    QVERIFY(converter.knowsSignificantBits());
    QVector<quint16> const samples = fx_SamplesOf(picture.get());
    QVERIFY(std::abs(samples[0] - 32768) < 256);
    QVERIFY(samples[40 * 3] > samples[0]); // a step that 8 bits would have lost
}

void tst_FFmpegConverter::deepVideoIsShiftedUpFromItsOwnBits()
{
    FramePtr const frame = fx_Frame(AV_PIX_FMT_YUV444P12, 64, 64);
    QVERIFY(frame);
    frame->color_range = AVCOL_RANGE_JPEG;
    fx_FillPlane(*frame, 0, [](int x, int y) { return y * 64 + x; }); // every sample that there is
    fx_FillPlane(*frame, 1, [](int, int) { return 2048; });
    fx_FillPlane(*frame, 2, [](int, int) { return 2048; });
    CxFFmpegConverter converter;
    CxOwnedPicture picture;
    QVERIFY(converter.convert(*frame, picture.get()));
    QCOMPARE(converter.sourceBits(), 12);
    QVector<quint16> const samples = fx_SamplesOf(picture.get());
    for (int i = 0; i < samples.size(); ++i)
        QCOMPARE(samples[i] >> 4, i / 3);

    FramePtr const grey = fx_Frame(AV_PIX_FMT_GRAY12, 64, 64);
    QVERIFY(grey && converter.convert(*grey, picture.get()));
    QCOMPARE(converter.sourceBits(), 0); // the picture has its bits as they are
}

static int const kSide = 96; // of a picture with colour edges

/// Blocks of two colours of one brightness, in 8-bit steps.
static int fx_EdgeChroma(int component, int x, int y)
{
    bool const isOne = ((x / 3 + y / 5) & 1) != 0;
    return isOne ? (component == 1 ? 90 : 180) : (component == 1 ? 170 : 80);
}

/// How well chroma survives the way to red, green and blue and back, in dB: ITU-R BT.601, limited range, the
/// left pixel of each pair on even rows, which is what the encoder's conversion picks.
static double fx_ChromaPsnr(SxPicBuf const& picture)
{
    double squares = 0;
    for (int y = 0; y < kSide; y += 2) {
        for (int x = 0; x < kSide; x += 2) {
            double bgr[3];
            for (int c = 0; c < 3; ++c) {
                uchar const* const row = picture.data + static_cast<size_t>(y) * picture.pitch;
                size_t const i = static_cast<size_t>(x) * picture.components + static_cast<size_t>(c);
                bgr[c] = fx_IsWordFormat(picture) ? reinterpret_cast<quint16 const*>(row)[i] / 257.0 : row[i];
            }
            double const luma = 0.299 * bgr[2] + 0.587 * bgr[1] + 0.114 * bgr[0];
            double const u = (bgr[0] - luma) / 1.772 * 224 / 255 + 128;
            double const v = (bgr[2] - luma) / 1.402 * 224 / 255 + 128;
            squares += std::pow(u - fx_EdgeChroma(1, x / 2, y / 2), 2) +
                       std::pow(v - fx_EdgeChroma(2, x / 2, y / 2), 2);
        }
    }
    return 10 * std::log10(255.0 * 255.0 / (squares / (kSide * kSide / 2)));
}

static double fx_ChromaPsnr(AVPixelFormat pixelFormat)
{
    AVPixFmtDescriptor const& format = *av_pix_fmt_desc_get(pixelFormat);
    FramePtr const frame = fx_Frame(pixelFormat, kSide, kSide);
    if (!frame)
        return 0;
    int const shift = format.comp[0].depth - 8;
    fx_FillPlane(*frame, 0, [=](int, int) { return 126 << shift; });
    for (int const c : {1, 2}) {
        fx_FillPlane(*frame, c, [&](int x, int y) {
            return fx_EdgeChroma(c, x >> (1 - format.log2_chroma_w), y >> (1 - format.log2_chroma_h))
                   << shift;
        });
    }
    CxOwnedPicture picture;
    return CxFFmpegConverter().convert(*frame, picture.get()) ? fx_ChromaPsnr(picture.get()) : 0;
}

void tst_FFmpegConverter::deepVideoKeepsItsColourEdges_data()
{
    QTest::addColumn<int>("format");
    for (AVPixelFormat const format : {AV_PIX_FMT_YUV420P10, AV_PIX_FMT_YUV420P12, AV_PIX_FMT_P010,
                                       AV_PIX_FMT_YUV422P10, AV_PIX_FMT_YUV422P12, AV_PIX_FMT_YUV444P10})
        QTest::newRow(av_get_pix_fmt_name(format)) << int(format);
}

void tst_FFmpegConverter::deepVideoKeepsItsColourEdges()
{
    QFETCH(int, format);
    double const deep = fx_ChromaPsnr(AVPixelFormat(format));
    double const eight = fx_ChromaPsnr(AV_PIX_FMT_YUV420P);
    QVERIFY2(eight > 45, qPrintable(QStringLiteral("8 bits: %1 dB").arg(eight)));
    QVERIFY2(deep > eight - 0.5, qPrintable(QStringLiteral("%1 dB against %2").arg(deep).arg(eight)));
}

QTEST_GUILESS_MAIN(tst_FFmpegConverter)
#include "tst_FFmpegConverter.moc"
