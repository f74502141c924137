#include "tools/sample/SampleDialogues.h"

namespace quillbook::sample::dialogues {

const std::string_view friendsTalk = R"script(
=dish: lasagne; the lentil soup; dumplings; mushroom risotto; that noodle thing; pumpkin curry; shakshuka; onion tart
=day: Monday; Tuesday; Wednesday; Thursday; Friday; Saturday; Sunday
=place: the market; the old cinema; the botanical garden; the harbour; the corner café; the climbing hall; the museum
=thing: umbrella; blue scarf; charger; library card; thermos; good pen; left glove
=time: at six; at half past seven; around eight; after work; at noon; in ten minutes
=film: the one with the lighthouse; the silent one; the documentary about bees; the French one; the one nobody understood

A: Anyone up for <place> on <day>?
M: Yes! <time>?
A: Perfect
B: I'll come a bit later

A: I made <dish> and there is far too much of it
B: Define too much
A: Bring a bowl. Bring two.
M: On my way

M: Has anybody seen my <thing>?
A: It's on our windowsill
M: How did it get there
A: It likes it here

A: That sunset just now 😍
B: Saw it from the tram, the whole tram went quiet
M: Missed it, was on the phone with the insurance

B: Film night <day>? I vote for <film>
A: I fell asleep in that one
B: Everyone did, it's restful

M: Running ten minutes late, sorry!
A: You always say ten
M: It's always ten. Sometimes twice.

A: My neighbour practises the trombone again
B: The same four notes?
A: He has learnt a fifth. I'm strangely proud.

B: Does anyone still need tomatoes, we're drowning in them
M: Me!
A: Me too, please
B: Two kilos each, no returns

A: Good morning ☀️
M: It is not
A: Coffee first, then again: good morning

M: I finally fixed the bike
A: The one since March?
M: The one since March, of last year

A: Could you send me the recipe for <dish>?
B: There's no recipe, there's only my aunt
A: Then send me your aunt

B: First snow!! ❄️
A: Already gone here
M: I'm putting my shoes on, wait for me

A: Please think of the plants while I'm away
M: Watered them. Sang to them. The fern looked embarrassed
A: That's how it looks when it's happy

M: Which train are you on?
A: The one that's standing still
M: Ah, that one

A: I passed the exam 🎓
B: YESSS
M: Was there ever any doubt
A: Yes. Mine.

B: Could somebody lend me a drill on <day>?
A: Tom has three
B: Why three
A: Nobody knows, least of all Tom

M: The cat sits in the box. The expensive bed is empty
A: As it should be
B: picture or it didn't happen

A: Dinner <time>, <dish>, no excuses
M: I have no excuses, only hunger

B: I had the strangest dream, we all lived in <place>
A: Rent?
B: Free, but you had to whistle to get in
M: I can't whistle
B: You lived outside

A: Congratulations on the new flat!!
M: Thank you! Housewarming once there's a second chair
A: I'm bringing a chair

B: Concert in the park on <day>, free entry
M: Rain forecast?
B: There's always a rain forecast
A: I'll bring the big umbrella

A: I'm learning to knit. So far: a very long rectangle
B: That's a scarf
A: Nobody told me it was finished

M: Thank you for yesterday, that was exactly what I needed ❤️
A: Any time. I mean it.
B: Same place next week?

A: The bakery has the cardamom buns again
M: How many
A: I have seven. For the two of us. We won't need <dish> today.

B: Can you hear that? The swifts are back!
A: First ones over our street this morning
M: Now it's summer

M: Is <day> still on?
A: Yes, <time>
B: I'll bring the <thing> back

A: My phone wrote "goat luck" to my boss
B: And?
A: He replied "and to you"

B: Walked past your old house today. The new people painted the door green
M: It was always meant to be green
A: It looks happy

A: How was the interview??
M: They laughed twice, on purpose
A: That's a good sign!

M: Who wants leftover cake
A: Define leftover
M: There's a plate and on it is a whole cake

B: The choir needs one more alto for <day>
A: I'm a bathroom alto
B: Good enough!

A: I've got two tickets for <film>, who's coming?
B: Me me me
A: <day>, <time>

M: Just saw a hedgehog in the yard!
B: Give it a name
M: Dr. Prickle
A: Sounds like a specialist

A: Sleep well everyone 🌙
B: Good night!
M: Night ❤️

B: Power cut in our street, we're playing cards by candle light
A: That sounds lovely actually
B: I'm losing, so no

A: Does somebody know a good bike shop near <place>?
M: The small one under the bridge. Ask for Henk
A: Henk is a legend, thank you

M: Reminder: clocks go back tonight
A: An hour more of sleep!
B: An hour more of <dish>

A: I think I left my <thing> at yours
B: You did. It's being well looked after
A: Keep it until <day>

B: My sister's baby said its first word
M: And?
B: "Bus"
A: A practical child

A: Found our old school photo while tidying up
M: Burn it
A: Framed it

M: Can somebody water my balcony until <day>?
B: I'm nearby, leave the key at <place>
M: You're the best

A: Any news from the vet?
B: All fine! She only ate half of the <thing>
A: Poor thing. Poor other half.

B: What are you all reading
A: The instructions of the washing machine
M: Is it good?
A: The middle part drags

M: I'm at <place>, it's lovely, why are you not here
A: Because of work!
B: What she said. Keep me a bench
)script";

const std::string_view familyTalk = R"script(
=dish: pea soup; apple pancakes; the roast; stuffed peppers; potato salad; plum dumplings
=day: Monday; Tuesday; Wednesday; Thursday; Friday; Saturday; Sunday
=relative: Aunt Vera; Uncle Pete; your cousin; Mrs Alder from next door; the vicar; your old teacher

A: Are you eating properly?
M: Yes! <dish> last night
A: Good. With vegetables?
M: With a vegetable

A: <relative> sends greetings
M: Greetings back!
A: I passed them on already

M: Can I come by on <day>?
A: You never have to ask
M: I ask because of the food
A: There will be <dish>

A: It is raining here. What is it doing where you are
M: Also raining
A: Then we have the same weather. That is nice.

M: How was the doctor?
A: She says I have the blood pressure of a young horse
M: Is that good?
A: She seemed pleased

A: Did the parcel come?
M: Just now! The socks are wonderful
A: The left one is a little longer. Wear it with pride.

M: Good night, sleep well
A: Good night my dear

A: Your father has bought a leaf blower
M: Oh no
A: There are no more leaves. He looks for them at <relative>'s.

M: I miss your <dish>
A: I can teach you on <day>. Bring an apron
M: I'll bring two

A: I have pressed the wrong button and now everything is in Italian
M: Go to "Impostazioni" :)
A: Grazie

M: Do you need anything from town?
A: Stamps, and a light bulb, and you
M: On <day> then

A: The swallows are back under the roof
M: All of them?
A: I counted six. And one who only sits there and complains

A: <relative> asked whether you still play the piano
M: When nobody is listening
A: We were always listening

M: Made your <dish>. It doesn't taste like yours
A: You were in a hurry
M: How do you know that
A: The onions know

A: Church fair on <day>. I am in charge of the raffle
M: Can I win the basket?
A: It must not look arranged

M: Thinking of you today ❤️
A: And I of you. Every day, you know that.

A: The photograph of the four of us has fallen down. Nothing broken
M: Want a stronger nail?
A: Your father has gone to buy eleven of them

M: Arrived safely!
A: Thank you for saying so. Now I can sleep.

A: What does "lol" mean? <relative> wrote it to me
M: Laughing out loud
A: Then I misunderstood the whole letter

M: Do you remember what the blue house was called?
A: The Lark. Your grandfather carried you there on his shoulders
M: I remember the shoulders
)script";

} // namespace quillbook::sample::dialogues
