#include "Shrinker.h"

#include "FrameMaker.h"

#include <algorithm>

namespace Tolvar::Varundo::Model {

namespace {

constexpr std::size_t HeaderSize = 5;
/// So few neighbours are tried wherever they stand: a broken frame can often be left out only together with
/// what has brought the receiver back into step.
constexpr std::size_t FewTogether = 4;

/// Leaves out ever smaller parts of the list as long as what remains is accepted, which may shorten it more.
template <class List, class Accepted>
void leaveOut(List& list, Accepted accepted)
{
    std::size_t part = list.size() > 1 ? list.size() / 2 : 1;
    bool goesOn = !list.empty();
    while (goesOn) {
        bool isShorter = false;
        for (std::size_t at = 0; at < list.size();) {
            List rest(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(at));
            if (list.size() - at > part) {
                rest.insert(rest.end(), list.begin() + static_cast<std::ptrdiff_t>(at + part), list.end());
            }
            if (accepted(rest)) {
                list = rest;
                isShorter = true;
            } else {
                at += part > FewTogether ? part : 1;
            }
        }
        goesOn = part > 1 || isShorter;
        part = part > 1 ? part / 2 : 1;
    }
}

bool isFrame(const Bytes& bytes)
{
    return bytes.size() > HeaderSize && bytes[0] == 0x02 && bytes.back() == 0x03 &&
           bytes.size() == HeaderSize + 1 + bytes[3] + std::size_t{256} * bytes[4];
}

/// The frames in the bytes, as far as there are any; the rest in one piece.
std::vector<Bytes> apart(const Bytes& bytes)
{
    std::vector<Bytes> pieces;
    std::size_t at = 0;
    while (bytes.size() > at + HeaderSize) {
        const std::size_t end = at + HeaderSize + 1 + bytes[at + 3] + std::size_t{256} * bytes[at + 4];
        const Bytes piece(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                          bytes.begin() + static_cast<std::ptrdiff_t>(std::min(end, bytes.size())));
        if (!isFrame(piece)) {
            break;
        }
        pieces.push_back(piece);
        at = end;
    }
    if (at < bytes.size()) {
        pieces.emplace_back(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end());
    }
    return pieces;
}

std::size_t sizeOf(const Sequence& sequence)
{
    std::size_t size = sequence.size();
    for (const Step& step : sequence) {
        size += step.pieces.size() + step.bytes().size();
    }
    return size;
}

} // namespace

Sequence Shrinker::shrunk(const Sequence& sequence)
{
    m_sequence = sequence;
    if (!fails(m_sequence)) {
        return sequence;
    }
    for (std::size_t before = 0; before != sizeOf(m_sequence) && isDone();) {
        before = sizeOf(m_sequence);
        leaveOutSteps();
        joinPartsOfFrames();
        for (std::size_t step = 0; step < m_sequence.size(); ++step) {
            leaveOutPieces(step);
            for (std::size_t piece = 0; piece < m_sequence[step].pieces.size(); ++piece) {
                leaveOutBytes(step, piece);
            }
        }
    }
    return m_sequence;
}

/// What comes behind the failure does not count.
bool Shrinker::fails(Sequence& candidate)
{
    if (m_trialsLeft <= 0) {
        return false;
    }
    --m_trialsLeft;
    const std::optional<std::size_t> failure = m_trial(candidate);
    if (failure) {
        candidate.resize(*failure + 1);
    }
    return failure.has_value();
}

void Shrinker::leaveOutSteps()
{
    leaveOut(m_sequence, [this](Sequence& candidate) { return fails(candidate); });
}

/// What a cut has made of frames can be made shorter only once they are whole again.
void Shrinker::joinPartsOfFrames()
{
    for (std::size_t at = 0; at + 1 < m_sequence.size();) {
        Sequence candidate = m_sequence;
        Step& step = candidate[at];
        const Step next = candidate[at + 1];
        if (step.pieces.empty() || next.pieces.empty() || isFrame(step.pieces.back()) ||
            isFrame(next.pieces.front())) {
            ++at;
            continue;
        }
        const Bytes more = next.bytes();
        Bytes whole = step.bytes();
        whole.insert(whole.end(), more.begin(), more.end());
        step.pieces = apart(whole);
        candidate.erase(candidate.begin() + static_cast<std::ptrdiff_t>(at) + 1);
        if (fails(candidate)) {
            m_sequence = candidate;
        } else {
            ++at;
        }
    }
}

/// The place of the failure must not move here: a shorter sequence would have no such step.
void Shrinker::leaveOutPieces(std::size_t step)
{
    std::vector<Bytes> pieces = m_sequence[step].pieces;
    leaveOut(pieces, [this, step](const std::vector<Bytes>& rest) {
        Sequence candidate = m_sequence;
        candidate[step].pieces = rest;
        const bool accepted = fails(candidate) && candidate.size() > step;
        if (accepted) {
            m_sequence = candidate;
        }
        return accepted;
    });
}

/// A frame stays a frame: its payload gets shorter, and so does the length that it announces.
void Shrinker::leaveOutBytes(std::size_t step, std::size_t piece)
{
    const Bytes whole = m_sequence[step].pieces[piece];
    const bool asFrame = isFrame(whole);
    Bytes bytes = asFrame ? Bytes(whole.begin() + HeaderSize, whole.end() - 1) : whole;
    leaveOut(bytes, [&](const Bytes& rest) {
        Sequence candidate = m_sequence;
        candidate[step].pieces[piece] = asFrame ? frame(whole[1], whole[2], rest) : rest;
        const bool accepted = fails(candidate) && candidate.size() > step;
        if (accepted) {
            m_sequence = candidate;
        }
        return accepted;
    });
}

} // namespace Tolvar::Varundo::Model
