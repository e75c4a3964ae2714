#pragma once

#include <cstdint>
#include <vector>

// How the bones hang together. Lists of bones count like Bones: index = bone number, entry 0 is not used. A link is the
// bone that a bone hangs on, 0 for none. Bones of the other kind (ordinary or shadow) have 0.

/// The links guessed from names and places: a tree in which both the bones and the ways to the root are short, with the
/// names of segments, limbs and sides in favour or against. Left and right get the same links. Bones without a finite
/// place hang on nothing.
[[nodiscard]] std::vector<int16_t> GuessLinks(bool shadow);
/// The links that alias files gave, when any bone of the kind has one, else the guessed ones. The former may hold
/// circles.
[[nodiscard]] std::vector<int16_t> LinksOf(bool shadow);
/// The partner of each bone on the other side: what alias files gave, when any bone of the kind has one, else the bone
/// nearest to the mirrored place, less than `threshold` away on each axis, each bone in one pair. A bone as near to its
/// own mirrored place is its own partner.
[[nodiscard]] std::vector<int16_t> MirrorPartners(bool shadow, float threshold);
