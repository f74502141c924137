#include "tools/sample/SampleDialogues.h"

namespace quillbook::sample::dialogues {

const std::string_view lakeHouse = R"script(
@2024-02-11 18:04
A: I'm calling it now: this summer we all go to the lake house. All of us. One week. No excuses. {love:M,C} {like:D}
B: She has already made a spreadsheet. I've seen it. {laugh:M,D,E}
M: Of course she has 😄
A: It has FOUR tabs, thank you very much {reply:2} {emph:B}
D: I'm in!! What's tab four?
A: Snacks.

@2024-02-11 18:31
C: Dear all, this is Grandma. Jonas has shown me how the group works. I would like to come along, if there is a bed that one can get out of again in the morning. I remember the old house by the water from 1961: your great-grandfather rowed us across in the evening, the lamps on the far shore were all lit, and nobody said a word until we were home. {love:M,A,D,E} {label:grandma1961}
E: She typed that with ONE finger. It took twenty minutes. I'm so proud {love:C}
M: Grandma, you get the big room with the view. That's settled. {reply:2}
C: Then I shall bring the plum cake. {like:A,B,D} {mutable}

@2024-02-18 10:12
A: Found it! Same lake, other shore. Three bedrooms and a jetty 😍 {pic:lakeDawn} {love:M,C,D}
D: THAT LIGHT {reply:1}
M: I'd swim there right now. In February.
B: You'd be in for four seconds {laugh:A,E}
E: Is there wifi {question:A}
C: There is a lake, Jonas.{laugh:A,B,M,D}

@2024-02-18 10:40
A: Here is where it is, the red line is the way from the station {pic:map}
M: So about forty minutes on foot?
A: With luggage and Tom, an hour
B: I heard that {reply:1}

@2024-02-25 20:15
A: Dates! July 20 to 27? Thumbs up if that works {like:B,M,C,E}
D: I can only come from the 21st, night shift 😩 {dislike:E}
A: Then we keep the best bed warm for you {reply:1} {love:D}
E: I'd also be fine with August {unlike:E}
A: No. {emph:B}

@2024-03-03 19:22
A: It's booked!!! 🎉🎉🎉 {emoji:🎉:M,D} {love:C} {style:confetti}
A: The confirmation, for everybody's records {pic:bookingPDF}
D: You are a machine
M: I've never been this happy about a PDF
C: I cannot open it, but I believe it. {keyed}

@2024-03-03 19:41
B: So who carries the canoe
M: retracted {retract}
B: I saw that, Robin.{laugh:A,D}

@2024-03-17 11:05
E: I've set up the cost split. It even adds up {pic:costsCSV}
B: Why am I paying for "emotional support marshmallows" {laugh:M,A}
E: You know why

@2024-03-31 09:30
C: A blessed Easter to you all. The crocuses are out, and the little one from next door found the egg behind the watering can, the one that I hide there every year for whoever lives next door. {pic:meadow} {love:A,M,D}
M: Happy Easter Grandma! 🐣
D: Happy Easter! ❤️
E: what a meadow 🌷

@2024-04-06 16:48
D: Baked a test cake for Grandma's inspection {pic:cake} {emph:A,M}
C: The layers are even. The candles stand a little crooked. I approve. {love:D} {label:inspection}
D: CRYING. She approves.
B: Is there any left {question:A}
D: no

@2024-04-14 12:20
M: Packing list. Please add what's missing and don't delete anyone's things, Jonas {pic:packingList}
E: I would never {edit:I would never do that again}
A: It says "one (1) sock" under your name
E: That's my summer sock

@2024-04-27 17:33
A: Went past the lake today and couldn't resist {pic:jetty} {love:M,C}
A: And this is the shore on our side {pic:forest}
M: I can smell the trees {reply:2}
C: There used to be a swing on that big one.

@2024-05-04 20:10
B: Practised with the canoe. Results: mixed {pic:canoeMovie} {laugh:A,M,D,E}
D: I've watched it six times
C: In my day we sat DOWN in a boat. {emph:M,A}
B: Noted, Ruth, noted

@2024-05-12 08:45
M: Happy Mother's Day, Grandma and Maya! 💐 {pic:flowers} {love:A,C}
C: Thank you my dear. I have put the picture on the little screen in the kitchen.
A: ❤️❤️❤️

@2024-05-19 21:02
E: Listen to this, I learnt the song for the campfire {pic:voiceNote}
M: That's... actually good?
D: More. We want more.
C: Your grandfather sang that. I had to sit down. {love:E,M,A,D} {label:song}
E: I'll play it for you by the fire, Grandma ❤️ {reply:1}

@2024-05-26 13:15
A: The landlady's number, in case I lose my phone in the lake again {pic:landladyCard}
B: AGAIN
A: we do not speak of it {reply:1}

@2024-06-02 18:50
D: what's the plan for breakfast
E: pancakes {pic:pancakes}
D: every day?
E: I didn't hear a question {laugh:D,M}

@2024-06-09 19:07
M: Weather says sunshine all July ☀️
B: It's June 9th. It says nothing. {dislike:M}
M: let me have this {reply:1}

@2024-06-15 15:26
A: Two versions of the cover for our photo book. Which one? {pic:coverOne}
A: or this {pic:coverTwo}
M: first one! {like:A}
D: second...
C: Both are called the same, dear, I do not know which is which.
A: That's on me 🙈

@2024-06-23 17:44
B: I made a playlist. 9 hours. 4 of them are whales {dislike:D,E} {like:C}
C: I enjoy the whales.
M: Overruled, whales stay 🐋 {laugh:A,B}

@2024-06-30 20:36
D: Jonas sent me this and I can't stop {pic:bounceGIF} {laugh:M,A}
E: It's you jumping into the lake
D: IT IS

@2024-07-07 10:00
A: TWO WEEKS!!! {emph:M,D,E,B}
A: Reminder of who brings what:\n– Grandma: plum cake, wisdom\n– Tom: canoe, whales\n– Priya: first-aid kit, the good knife\n– Jonas: guitar, sock\n– Robin: cameras, all of the chargers, and the board game with the missing piece (we have replaced it with a button)\n– me: spreadsheet {like:B,C,D,E,M} {label:whobrings}
M: The button's name is Gerald. {laugh:A,B,E}
D: long live Gerald {reply:1}

@2024-07-14 19:19
E: Is this the file with the route? It came out strange {pic:awkward}
B: What did you DO to that name
E: it was the printer {question:B}
M: works here, somehow

@2024-07-19 22:11
A: Bags packed. Tom is asleep in the car already
B: I'm guarding it
M: See you at nine ❤️ {love:A}
C: I have not slept a wink and am very much looking forward to it. {love:A,B,D,E,M}

@2024-07-20 14:02
M: WE'RE HERE {pic:lakeNoon} {love:D,A} {emph:E}
D: aaaaah wait for me
E: the water is perfect, get out of that hospital
A: Grandma is already in the deckchair and gives orders {laugh:D,M}

@2024-07-20 21:48
A: First evening {pic:sunset} {love:C,D,M,B}
D: I'm not crying, I'm on a night bus
M: Save her a piece of cake!! {reply:1}
B: about that

@2024-07-21 11:30
D: I'm at the station, who's coming to get me
M: Me and the wheelbarrow
D: the what {question:D}
M: for the bags. mostly {pic:forestTwo}

@2024-07-22 08:05
C: I got up at five and had the lake for myself. No wind, not a ripple, and one heron. I thought of you all still asleep, and how loud it will be when you are up, and that I would not have it otherwise. {love:A,B,D,E,M} {archive} {label:heron}
M: Grandma 😭❤️ {reply:1}
A: Printing this and framing it.

@2024-07-22 19:40
B: The board game has ended. Gerald has won. {laugh:D,E,M} {pic:game}
E: a button beat us all
C: He played very well.

@2024-07-23 16:12
E: canoe trip pictures! {pic:boat} {love:A}
E: and the other one is too big, it only half arrived {pic:missingPhoto}
M: can't see the second one
E: it was mostly Tom's back anyway

@2024-07-24 22:30
D: The fire tonight. I'll remember this {pic:campfire} {love:A,B,C,E,M} {bp}
C: He sang it to the end. {replyto:song} {love:E}
E: ❤️
A: nobody took a video and that's the best part
M: nobody said a word until we were home {replyto:grandma1961} {love:A,B,C,D,E}

@2024-07-25 09:15
A: Storm came through at night, everyone dry?
B: the tent for the canoe is now a boat itself
D: and the sky afterwards… {pic:rainbow} {love:M,C,A}
E: it didn't send :( {pic:zeroByte}
E: {garbage}
M: that last one came through as nonsense, Jonas
E: wet thumbs

@2024-07-26 12:01
M: Fruit before the long drive {pic:stillLife}
C: That is my bowl from home! I wondered where it was.
A: it came with us for moral support {laugh:C}
B: Last swim in ten minutes!!

@2024-07-26 20:55
D: I don't want to go home
E: same
M: Last picture from the jetty tonight {pic:nightSky} {love:A,B,C,D,E}
A: Thank you all. For every single bit of it. {love:M,C,D,B,E} {archive}

@2024-07-27 18:33
B: Home. The car still smells of lake and plum cake
A: Unpacked nothing. Going to bed.
C: Home safely, my dears. My neighbour asked how it was, and I did not know where to begin. {love:A,M,D,E,B}

@2024-08-03 10:44
M: I've sorted the pictures: 412 of them. 61 are of Tom's thumb {laugh:A,D,E}
B: It's a good thumb {pic:thumbMissing}
D: Post the heron!!
M: there is no picture of the heron. Only Grandma saw it. {reply:1} {love:C}

@2024-08-11 17:27
A: The photo book has arrived {pic:album} {love:M,C,D,E,B}
C: I have looked at it three times today. On page 14 one can see him rowing, if one knows where to look. {replygone}
M: I know where to look ❤️ {reply:1}

@2024-08-25 19:03
E: same week next year?
A: tab five is already open {laugh:M,B,D} {like:C}
B: told you

@2024-09-08 18:20
C: I found the old photograph from 1961 and had it copied for each of you. It is in the post. On the back it says: "All of us, nobody missing." {love:A,B,D,E,M}
M: We'll put ours right beside it. {both} {love:C,A}
)script";

} // namespace quillbook::sample::dialogues
