"""The words of the sample interview: who says what, and how close to the microphone.

Every entry is one line of the transcript, so it is written to last 3 to 9 seconds when spoken.
Nearness:
  CLOSE  the subject speaks straight into her microphone
  ASIDE  the subject leans back or turns away: on the microphone, a few dB lower
  FAR    the interviewer, across the room and on no microphone of his own
A third of the subject's lines are ASIDE and stand together at the beginnings and ends of her turns. A loudness split
that calls the upper two thirds of her lines "loud" therefore finds whole runs of about 15 seconds.
"""

CLOSE, ASIDE, FAR = "close", "aside", "far"

INTERVIEW = {
    "harbour_interview_01": [
        (FAR, "Could you tell us who you are, and where you grew up?"),
        (CLOSE, "My name is Maren Holt, I build boats, and I grew up in the lighthouse on Gull Rock."),
        (CLOSE, "My father kept the lamp for thirty one years, and he never once let it go dark."),
        (CLOSE, "At night I fell asleep to the beam going round, like a slow heartbeat on the wall."),
        (ASIDE, "I thought every child in the world had a light like that outside the window."),
        (FAR, "And when did that change for you, do you remember?"),
        (ASIDE, "Well, there was one winter. The winter I turned eleven."),
        (CLOSE, "A storm took our only boat off the slip, and by morning there was nothing left but a rope."),
        (CLOSE, "My father looked at the sea for a long time, and then he handed me his saw."),
        (CLOSE, "He said, if the sea takes a boat from us, then we will build her a better one."),
        (ASIDE, "I had no idea what I was doing, you know. I was only a child."),
    ],
    "harbour_interview_02": [
        (FAR, "And did the two of you ever get to finish that boat?"),
        (ASIDE, "It took us until the summer, just him and me, in the old oil store."),
        (CLOSE, "I learned that wood remembers. If you force a plank, it waits, and it breaks on you later."),
        (CLOSE, "So you warm it with steam, and you ask it gently, and it bends like a blade of grass."),
        (CLOSE, "The day we launched her I was so proud that I forgot to put my boots on."),
        (FAR, "Do you ever go back to the rock, now that it stands empty?"),
        (CLOSE, "They put in an electric lamp, and my father came ashore with one suitcase and a kettle."),
        (CLOSE, "Now I build boats in the harbour, right where he can see them from his kitchen."),
        (CLOSE, "When a boat is finished I row her past the rock at dusk, and I raise my oars to the light."),
        (ASIDE, "It does not know me any more, I suppose. Nobody lives out there."),
        (ASIDE, "But I know it, and it still goes round. That is enough for me."),
    ],
}
