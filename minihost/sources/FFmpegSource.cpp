#include "FFmpegSource.h"

#include <utility>

#include "FFmpegInput.h"
#include "PictureFormat.h"
#include "PictureRate.h"
#include "PnmMaxval.h"

extern "C" {
#include <libavdevice/avdevice.h>
#include <libavutil/log.h>
}

static int fx_IsInterrupted(void* stop)
{
    return static_cast<std::atomic<bool> const*>(stop)->load() ? 1 : 0;
}

CxFFmpegSource::CxFFmpegSource(QStringList inputs, int bits, std::atomic<bool> const* stop,
                               SxFFmpegOptions const& options)
    : m_inputs(std::move(inputs))
    , m_bits(bits)
    , m_stop(stop)
    , m_options(options)
    , m_frame(av_frame_alloc())
    , m_packet(av_packet_alloc())
{
    avdevice_register_all();
}

bool CxFFmpegSource::hasFormat(QString const& name)
{
    avdevice_register_all();
    return av_find_input_format(name.toLatin1().constData()) != nullptr;
}

void CxFFmpegSource::setLogShown(bool shown) { av_log_set_level(shown ? AV_LOG_INFO : AV_LOG_QUIET); }

QString CxFFmpegSource::inputName() const
{
    QString const& input = m_inputs[m_nextInput - 1];
    return input == QLatin1String("-") ? QStringLiteral("standard input") : input;
}

bool CxFFmpegSource::fail(QString const& cause)
{
    m_error = QStringLiteral("%1: %2.").arg(inputName(), cause);
    m_damage.forget();
    closeInput();
    m_nextInput = static_cast<int>(m_inputs.size());
    return false;
}

/// For an input that nothing can be had from: goes on without it, unless it is all there is.
bool CxFFmpegSource::leaveOut(QString const& cause)
{
    if (m_delivered == 0 && m_nextInput >= m_inputs.size())
        return fail(cause);
    m_damage.forget(); // the cause says it all
    m_damage.begin(inputName());
    m_damage.addCut(QStringLiteral("%1; it is left out").arg(cause));
    closeInput();
    return false;
}

/// For an input that FFmpeg does not read: what is in it can be at fault, or the way to it.
bool CxFFmpegSource::refuse(int error)
{
    bool const isContent = error == AVERROR_INVALIDDATA || error == AVERROR_EOF;
    return isContent ? leaveOut(fx_OpenErrorText(AVERROR_INVALIDDATA)) : fail(fx_OpenErrorText(error));
}

/// Opens the input's reader and sees that it took every option; false with the error set, or when stopped.
bool CxFFmpegSource::openFormat(SxFFmpegInput const& input)
{
    AVFormatContext* format = avformat_alloc_context();
    if (!format || !m_frame || !m_packet) {
        avformat_free_context(format);
        return fail(QStringLiteral("out of memory"));
    }
    if (m_stop)
        format->interrupt_callback = {fx_IsInterrupted, const_cast<std::atomic<bool>*>(m_stop)};

    // A per cent sign in a picture's name is no pattern for more names; other readers ignore this.
    AVDictionary* options = nullptr;
    av_dict_set(&options, "pattern_type", "none", 0);
    // Without this a raw stream that carries no rate would have FFmpeg's 25. A device has its own.
    bool const isOffered = !input.format || (input.format->flags & AVFMT_NOFILE) == 0;
    if (isOffered)
        av_dict_set_int(&options, "framerate", kPicturesASecond, 0);
    for (auto option = m_options.options.begin(); option != m_options.options.end(); ++option)
        av_dict_set(&options, option.key().toLocal8Bit().constData(),
                    option.value().toLocal8Bit().constData(), 0);
    int const error = avformat_open_input(&format, input.url.constData(), input.format, &options);
    DictionaryPtr const unused(options); // on success what nobody took
    if (error < 0) {
        if (isStopped())
            return false; // the context is freed already
        if (error == AVERROR(EINVAL) && input.format)
            return fail(
                QStringLiteral("FFmpeg's reader '%1' refuses these options or needs more, such as the size "
                               "of raw pictures; ffmpeg -h demuxer=%1 lists them")
                    .arg(QString::fromLatin1(input.format->name)));
        return refuse(error);
    }
    m_format.reset(format);
    m_count.readIndex(*format);
    bool const isTaken = isOffered && !av_dict_get(unused.get(), "framerate", nullptr, 0);
    m_rateOrigin = m_options.options.contains(QStringLiteral("framerate")) ? RateOrigin::User
                   : isTaken                                               ? RateOrigin::Offer
                                                                           : RateOrigin::Stream;
    for (QString const& name : m_options.options.keys()) {
        QByteArray const key = name.toLocal8Bit();
        if (av_dict_get(unused.get(), key.constData(), nullptr, 0) && key != "pattern_type")
            return fail(
                QStringLiteral("FFmpeg's reader '%1' has no option '%2'; ffmpeg -h demuxer=%1 lists "
                               "those it has")
                    .arg(QString::fromLatin1(format->iformat->name).section(QLatin1Char(','), 0, 0), name));
    }
    return true;
}

/// Opens the next input with its decoder; false with the error set, or when stopped.
bool CxFFmpegSource::openInput()
{
    if (!openFormat(fx_FFmpegInput(m_inputs[m_nextInput++], m_options.format)))
        return false;
    AVFormatContext* const format = m_format.get();
    if (m_options.format.isEmpty() && fx_IsTextFormat(*format->iformat))
        return leaveOut(fx_OpenErrorText(AVERROR_INVALIDDATA));
    m_isStill = fx_IsStillFormat(*format->iformat);
    // A picture file is one picture, whatever preview its reader would find behind it; a stream of
    // pictures on standard input is many.
    m_isOnePicture = m_isStill && m_inputs[m_nextInput - 1] != QLatin1String("-");

    int error = avformat_find_stream_info(format, nullptr);
    if (error < 0)
        return isStopped() ? false : refuse(error);
    FFmpegCodec* decoder = nullptr;
    m_stream = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    if (m_stream < 0)
        return isStopped() ? false : leaveOut(QStringLiteral("there is no picture in it"));

    AVStream const& stream = *format->streams[m_stream];
    error = m_decoder.open(stream, decoder, m_isOnePicture);
    if (error < 0)
        return fail(QStringLiteral("its pictures cannot be decoded: %1").arg(fx_FFmpegErrorText(error)));

    m_hasEnd = fx_HasEnd(*format);
    m_isLive = fx_IsLive(*format);
    m_count.begin(*format, m_stream);
    m_damage.begin(inputName());
    m_drained = false;
    m_hasGap = false;
    m_framesOfInput = 0;
    m_firstPts = AV_NOPTS_VALUE;
    expect(stream);
    m_facts = fx_StreamFacts(stream, m_rateOrigin);
    m_rate.beginInput(m_facts.rate, m_facts.hasClock);
    return true;
}

void CxFFmpegSource::closeInput()
{
    m_damage.end();
    m_decoder.close();
    m_format.reset();
}

/// How many pictures there will be: the number of picture files, or what a single video says.
void CxFFmpegSource::expect(AVStream const& stream)
{
    if (m_nextInput > 1) {
        if (!m_isOnePicture)
            m_expected = -1; // pictures and videos mixed
        return;
    }
    if (m_isOnePicture) {
        m_expected = static_cast<int>(m_inputs.size());
    } else if (m_inputs.size() == 1 && !m_isStill) {
        qint64 count = stream.nb_frames;
        if (count <= 0 && m_format->duration > 0)
            count = av_rescale_q(m_format->duration, {1, AV_TIME_BASE}, av_inv_q(stream.avg_frame_rate));
        if (count > 0 && count < INT_MAX)
            m_expected = static_cast<int>(count);
    }
}

static bool fx_IsPnm(AVStream const& stream)
{
    AVCodecID const codec = stream.codecpar->codec_id;
    return codec == AV_CODEC_ID_PGM || codec == AV_CODEC_ID_PPM || codec == AV_CODEC_ID_PAM;
}

/// Hands the decoder the next packet, or what is behind the last; false when stopped, or on errors that end
/// the whole source, which are then set.
bool CxFFmpegSource::readPacket()
{
    int const error = av_read_frame(m_format.get(), m_packet.get());
    bool const isStop = error == AVERROR_EXIT || isStopped();
    if (error == AVERROR(EAGAIN) && !isStop)
        return true; // a device without a picture yet
    if (error < 0 && error != AVERROR_EOF && !isStop && m_framesOfInput == 0)
        return refuse(error);
    if (error < 0 && !isStop)
        endInput(error);
    if (error >= 0 && !isStop && m_packet->stream_index == m_stream) {
        m_count.add(*m_packet);
        m_maxval = fx_IsPnm(*m_format->streams[m_stream]) ? fx_PnmMaxval(m_packet->data, m_packet->size) : 0;
        m_hasGap = m_hasGap || (m_packet->flags & AV_PKT_FLAG_CORRUPT) != 0;
        if (m_decoder.send(m_packet.get()) < 0)
            m_damage.addPart(m_delivered);
    }
    av_packet_unref(m_packet.get());
    return !isStop;
}

/// With \p error from its reader: the decoder gives out what it holds back, and what is missing is told.
void CxFFmpegSource::endInput(int error)
{
    m_drained = true;
    m_decoder.send(nullptr);
    int const cause = error == AVERROR_EOF && m_format->pb ? m_format->pb->error : error;
    QString const missing = m_count.missing();
    if (!missing.isEmpty())
        m_damage.addCut(missing);
    else if (cause < 0 && cause != AVERROR_EOF)
        m_damage.addCut(QStringLiteral("reading ended early: %1").arg(fx_FFmpegErrorText(cause)));
    else if (m_hasGap)
        m_damage.addCut(QStringLiteral("some of its data are damaged or missing"));
}

/// The next frame of the open input in m_frame; false at its end, when stopped, or on errors that end
/// the whole source, which are then set.
bool CxFFmpegSource::decodeFrame()
{
    for (;;) {
        int const error = m_decoder.receive(*m_frame);
        if (error >= 0)
            return true;
        if (error == AVERROR_EOF)
            return false;
        if (error != AVERROR(EAGAIN))
            m_damage.addPart(m_delivered);
        if (m_drained && error != AVERROR(EAGAIN))
            return false;
        if (!readPacket())
            return false;
    }
}

/// Microseconds from the first picture: the input's own clock, or kPicturesASecond.
quint64 CxFFmpegSource::timestampOf(AVFrame const& frame)
{
    quint64 const count = static_cast<quint64>(m_delivered);
    quint64 const step = 1000000 / kPicturesASecond;
    if (m_framesOfInput == 0)
        m_inputStart = m_delivered == 0 ? 0 : m_lastTime + step;
    if (!m_isStill && !m_facts.hasClock && m_facts.rate.isKnown()) {
        // Its reader counts at the rate that it was offered, and the stream names another.
        m_hasClock = true;
        qint64 const perPicture = 1000000LL * m_facts.rate.denominator;
        return m_inputStart +
               static_cast<quint64>(av_rescale(m_framesOfInput, perPicture, m_facts.rate.numerator));
    }
    if (m_isStill || frame.best_effort_timestamp == AV_NOPTS_VALUE)
        return m_hasClock ? m_lastTime + step : count * 1000000 / kPicturesASecond;

    m_hasClock = true;
    qint64 const pts =
        av_rescale_q(frame.best_effort_timestamp, m_format->streams[m_stream]->time_base, {1, 1000000});
    if (m_firstPts == AV_NOPTS_VALUE)
        m_firstPts = pts;
    quint64 const time = m_inputStart + static_cast<quint64>(std::max<qint64>(pts - m_firstPts, 0));
    // Clocks of broken files run backwards; the encoder's must not.
    return m_delivered > 0 && time <= m_lastTime ? m_lastTime + 1000 : time;
}

bool CxFFmpegSource::knowsSignificantBits() const
{
    // 65535 is what programs write that only know of words.
    return m_picture.knowsSignificantBits() || (m_maxval > 0 && m_maxval < 65535);
}

void CxFFmpegSource::applyBits(SxPicBuf& picture)
{
    if (m_bits == 0)
        return;
    if (fx_IsWordFormat(picture) && !knowsSignificantBits()) {
        picture.bitsPerSample = static_cast<quint32>(m_bits);
    } else if (!m_saidBitsIgnored) {
        m_warnings +=
            inputName() + QStringLiteral(": the samples are known to have %1 bits; --bits is not needed.")
                              .arg(picture.bitsPerSample);
        m_saidBitsIgnored = true;
    }
}

IxPictureSource::Result CxFFmpegSource::next(SxPicBuf& picture)
{
    for (;;) {
        if (isStopped()) {
            m_damage.end();
            return Result::End;
        }
        if (!m_format) {
            if (m_nextInput >= m_inputs.size())
                return m_error.isEmpty() ? Result::End : Result::Error;
            if (!openInput()) {
                if (!m_error.isEmpty())
                    return Result::Error;
                continue; // it was left out, or the wait for it was stopped
            }
        }
        if (decodeFrame())
            break;
        if (!m_error.isEmpty())
            return Result::Error;
        if (isStopped())
            continue;
        if (m_framesOfInput > 0)
            closeInput();
        else if (!leaveOut(QStringLiteral("no picture in it could be decoded")) && !m_error.isEmpty())
            return Result::Error;
    }
    if (m_decoder.isDamaged())
        m_damage.addPicture(m_delivered);

    if (!m_picture.convert(*m_frame, picture)) {
        fail(QStringLiteral("its pixel format cannot be converted"));
        return Result::Error;
    }
    m_rotation = fx_FrameRotation(*m_frame, m_facts.rotation);
    m_pixelShape = fx_FramePixelShape(*m_format, *m_format->streams[m_stream], *m_frame);
    fx_RestorePnmWords(picture, m_maxval);
    applyBits(picture);
    picture.timestamp = timestampOf(*m_frame);
    m_lastTime = picture.timestamp;
    m_rate.add(picture.timestamp);
    ++m_delivered;
    ++m_framesOfInput;
    av_frame_unref(m_frame.get());
    if (m_isOnePicture)
        closeInput();
    return Result::Picture;
}

QStringList CxFFmpegSource::takeWarnings()
{
    QStringList warnings;
    warnings.swap(m_warnings);
    return m_damage.takeWarnings() + warnings;
}
