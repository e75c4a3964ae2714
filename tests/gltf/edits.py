"""The edits made in Blender, and what must come back of each with --like."""
EDITS = []
