"""Material of the English meetings: invented people, invented organisations, everyday work."""

from __future__ import annotations

from datetime import date

from scene import Language, Team, scene

MONTHS = ("January", "February", "March", "April", "May", "June", "July", "August",
          "September", "October", "November", "December")
WEEKDAYS = ("Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday")


def due(day: date) -> str:
    return f"{day.day} {MONTHS[day.month - 1]}"


def by(today: date, day: date) -> str:
    return f"by {WEEKDAYS[day.weekday()]}" if (day - today).days < 7 else f"by {due(day)}"


CLINIC = Team(
    "Harbour Street Clinic",
    ("Priya Nair", "Tom Ashworth", "Grace Okafor", "Daniel Reyes"),
    (
        scene(
            "Missed appointments",
            "Patients get one reminder two days ahead that they can answer, instead of three that they cannot.",
            """
            A: Missed appointments first. Tom, how bad is it really?
            B #number: Last month one in nine. That is a full doctor's week of empty chairs.
            C: And we already send three reminders. Nobody can say they weren't told.
            D #insight: They were told, but they couldn't answer. The message comes from a number that takes no replies.
            B: So somebody who can't come has to ring us, and the line is busy until ten.
            A: Then one reminder, two days ahead, with a reply that cancels.
            C: If they cancel two days ahead I can fill the slot. If it's the same morning, I can't.
            D #task: The message service does replies. I'll switch it on for two doctors {by}.
            A: Good, two doctors for a month, and then we look at the numbers again.
            """,
            decision="One reminder two days ahead, with a reply that cancels, tried with two doctors for a month.",
            tasks=(("D", "Switch on reminder replies for two doctors", 4, "A reply frees the slot in the calendar", True),),
            question="Who fills the freed slots on the days when Grace is away?",
            number=("Missed appointments", "1 in 9", "About one doctor's week a month"),
            insight=("cause", "The reminders cannot be answered",
                     "Patients who want to cancel must ring a line that is busy until ten."),
        ),
        scene(
            "Blood test samples and the courier",
            "The courier comes at half past two instead of four, so that samples reach the lab the same day.",
            """
            C: Eleven samples came back last week marked too old. Eleven people had to be pricked again.
            A: Where do they get old? We draw them in the morning.
            B #number: The courier leaves at four, the lab closes intake at five, and the bridge takes fifty minutes.
            D: So one traffic jam and they sit overnight.
            B #for: I'd ask for a second run at noon. Two runs, no worries.
            A #against: Two runs double the bill. One earlier run does nearly the same.
            C: Half past two would catch everything except the late diabetic clinic.
            D: Those could go next morning, they keep longer.
            A: Half past two it is. Tom, will you ring the courier?
            B #task: I'll ring today and have it confirmed {by}.
            """,
            decision="The courier collects samples at 14:30; late diabetic samples go the next morning.",
            tasks=(("B", "Confirm the 14:30 collection with the courier", 2, "Written confirmation from the courier", True),),
            risk="A jam on the bridge still delays the samples, only less often.",
            number=("Drive to the lab over the bridge", "50 minutes", "Intake closes at 17:00"),
            dispute=("A second courier run or one earlier run", "B", "Two runs a day",
                     "A", "Two runs double the bill", "One run at 14:30"),
        ),
        scene(
            "A quiet room for difficult news",
            "The old archive becomes a quiet room where doctors can talk to families.",
            """
            A: I told a family very bad news in the corridor on Tuesday. I don't want to do that again.
            C: There is nowhere else. Every room has a queue in front of it.
            D #idea: The archive. It's half empty since the records went digital, and it has a window.
            B: It smells of cardboard, but that can be fixed.
            C #number: I measured it: eleven square metres. Two sofas and a small table.
            B: Does it need permission? It's listed as storage.
            D: Change of use, one form. I've done it before, it took three weeks.
            A: Then let's start. No posters, no leaflets, just a room.
            D #task: I'll file the form {by}.
            C #task2: And I'll empty the shelves {by2}, if I get two pairs of hands.
            """,
            decision="The archive becomes a quiet room for talks with families.",
            tasks=(("D", "File the change of use for the archive", 3, "The form is stamped", True),
                   ("C", "Empty the archive shelves", 11, "The room holds nothing but furniture", False)),
            number=("Size of the archive", "11 m²", ""),
            idea=("Turn the archive into a quiet room", ("It has a window", "Half empty already"),
                  ("Needs a change of use", "The remaining records need another place")),
        ),
        scene(
            "Flu season rota",
            "The vaccination afternoons move to Wednesday and Saturday, with volunteers at the door.",
            """
            A: Flu season starts in six weeks. Last year we improvised, and it showed.
            B #number: Last year four hundred and ten people came on two Mondays. The queue reached the bakery.
            D: The bakery didn't mind, to be fair.
            C: Mondays are our worst day anyway. Wednesday and Saturday are half as busy.
            A: Can we staff a Saturday?
            B: If it's voluntary and paid properly. I have three names already.
            C #insight: Half of the queue was people with questions, not people waiting for a jab.
            D: Put somebody at the door who answers questions, and the queue is half as long.
            A: I like that a lot. Wednesday and Saturday, two volunteers at the door.
            B #task: Rota {by}, Saturdays first.
            """,
            decision="Vaccination runs on Wednesdays and Saturdays, with two volunteers answering questions at the door.",
            tasks=(("B", "Write the vaccination rota, Saturdays first", 9, "Every slot has two names", True),),
            risk="The vaccine delivery is late, as it was two years ago.",
            number=("Visitors on two Mondays last year", "410", "The queue left the building"),
            insight=("observation", "Half of the queue only had questions",
                     "Someone at the door who answers them halves the wait without another nurse."),
        ),
        scene(
            "Phones at the front desk",
            "Calls are answered away from the front desk, so that the person standing there comes first.",
            """
            C: A man stood at my desk for twelve minutes yesterday while I was on the phone. He was very polite about it.
            A: You had no choice. It rings, you answer.
            B #number: Between eight and ten it rings every fifty seconds. I counted on Thursday.
            D: Then it's not a desk problem, it's one person doing two jobs.
            C #insight: And whoever is on the phone always wins, because the phone is louder.
            A: Could the back office take calls until ten?
            B: Two of us could. We'd start the billing later, and nobody minds billing at eleven.
            D #task: I can move the line {by}, it is only a setting.
            A: Do it. The person in front of us comes first.
            """,
            decision="Until ten the back office answers the phone, the front desk serves the people in front of it.",
            tasks=(("D", "Route morning calls to the back office", 1, "The front desk phone is silent until ten", True),),
            step="Count the calls again after two weeks.",
            number=("Calls between eight and ten", "one every 50 seconds", ""),
            insight=("cause", "The phone wins because it is louder",
                     "Whoever stands at the desk waits for everybody who rings."),
        ),
    ),
)

FERRY = Team(
    "Island ferry booking team",
    ("Hannah Lindqvist", "Marcus Bell", "Yuki Tanaka", "Owen Price"),
    (
        scene(
            "Double bookings on the car deck",
            "Double bookings came from a hold that expired during payment; holds now last until payment ends.",
            """
            A: Saturday, two cars, one space. The second family watched the ferry leave. Marcus, what happened?
            B #insight: The hold lasts ten minutes, and their payment took eleven. The space was sold while they typed a code.
            D: So we took the money for something we had already sold.
            B #number: Four times this month. I went through the log by hand.
            C: From the screen they couldn't know. It said reserved until the very end.
            A: What is the fix, and what is the quick fix?
            B #task: The quick one is a longer hold, thirty minutes, tonight. The real one checks again before charging; {by}.
            D: I'd like a test that pays slowly. We only ever test people in a hurry.
            C #task2: I'll change the wording so that it shows the time left, {by2}.
            A: Both, please. And I'll write to the family myself.
            """,
            decision="Holds last until payment ends, and the space is checked again before the card is charged.",
            tasks=(("B", "Check the space again before charging the card", 5, "A slow payment never sells a space twice", True),
                   ("C", "Show the time left on the hold", 6, None, True)),
            step="Write to the family that was left behind and refund the crossing.",
            number=("Double bookings this month", "4", "All during slow payments"),
            insight=("cause", "The hold was shorter than the payment",
                     "Ten minutes are enough for most people, and never for a bank that asks for a code."),
        ),
        scene(
            "Timetable that fits a phone",
            "The phone timetable shows the next three departures first and the whole day on request.",
            """
            C: I watched six people at the pier look for the next ferry. Average: forty seconds.
            A: Forty seconds for one number?
            C #number: Five of the six pinched and zoomed. It's a table made for paper.
            D #against: The islanders love that table. They know where to look.
            C #for: Islanders look once a year. Visitors look every hour, and they miss boats.
            B: Show the next three departures, big, and put the table one tap away.
            D: With the table still there I have no objection.
            A: And when the last boat has gone?
            C: Then it says so plainly, and shows tomorrow's first.
            A: Lovely. That sentence alone is worth the work.
            C #task: Design {by}, and I'll take it back to the same pier.
            """,
            decision="The phone shows the next three departures, the full table is one tap away.",
            tasks=(("C", "Design the next-departures screen and try it at the pier", 7, "Six people find the next boat in ten seconds", True),),
            number=("Time to find the next ferry", "40 seconds", "Six people watched at the pier"),
            dispute=("Replace the timetable on phones", "C", "Show the next departures first",
                     "D", "Islanders know the table by heart", "Next departures first, the table one tap away"),
        ),
        scene(
            "Storm cancellations",
            "In a storm we message every booked passenger before the board changes, and rebook with one tap.",
            """
            A: The storm on the ninth. What did we learn?
            D #number: Two hundred and sixty passengers, nine messages sent. The other people read it on the board at the pier.
            B: The messages went out one by one, from my laptop. I stopped when the phone started ringing.
            C #insight: What people asked for was never a refund. They asked when the next boat goes.
            A: So the message should offer the next boat, not an apology.
            C: With one button that takes it.
            D: And it must go out before the board changes. The board is for people who are already wet.
            B #task: Sending to a whole crossing is small, {by}. One-tap rebooking is more, say two weeks.
            A: First the message, then the button. Owen, would you write the text?
            D #task2: Done {by2}, in three languages.
            """,
            decision="Storm messages go to the whole crossing before the board changes and offer the next boat.",
            tasks=(("B", "Send one message to all passengers of a crossing", 5, "260 messages leave within a minute", True),
                   ("D", "Write the storm message in three languages", 3, None, True)),
            risk="The next storm comes before one-tap rebooking is ready.",
            number=("Passengers told by message on the ninth", "9 of 260", ""),
            insight=("observation", "They ask for the next boat, not for the money",
                     "Offering a crossing answers most of the calls before they are made."),
        ),
        scene(
            "Bicycles and dogs",
            "Bicycles get their own free ticket so that the crew can count them; dogs stay as they are.",
            """
            D: The crew asks, again, how many bicycles are coming. We don't know, because they are free.
            B #number: On the Sunday of the regatta there were seventy-one. The rack holds thirty.
            A: And dogs?
            D: Dogs stand on their own feet. Nobody complains about dogs.
            C #idea: Give bicycles a ticket that costs nothing. Then we know, and we can say when it's full.
            B: People will book one and not bring it.
            C: Some will. Even so it's a better number than none.
            A: Agreed. A free ticket, thirty to a boat, and a polite line when it's full.
            B #task: It is a new ticket type, no code. I'll have it {by}.
            """,
            decision="Bicycles need a free ticket, thirty to a crossing.",
            tasks=(("B", "Add the free bicycle ticket", 2, "The crew sees the number of bicycles before boarding", True),),
            question="Does a tandem count once or twice?",
            number=("Bicycles on regatta Sunday", "71", "The rack holds 30"),
            idea=("A free ticket for bicycles", ("The crew can count", "We can say when it is full"),
                  ("Some tickets will go unused",)),
        ),
        scene(
            "Moving the winter release",
            "The winter release moves two weeks, and the payment change goes out alone.",
            """
            A: The winter release. Are we still good for the first?
            B #against: Honestly, no. The payment change and the new timetable touch the same page.
            C #for: I'd rather keep the date. We promised the islands.
            D #number: Of fourteen test days we have used eleven, and payment isn't in yet.
            B: If we ship both and something breaks, we won't know which one did it.
            C: Then split them. Payment first, alone, where nobody sees it.
            A: And the timetable two weeks later. I can explain two weeks.
            D: That gives me four clean days for each. I can work with that.
            A #task: I'll tell the islands {by}, with the reason and not with a slogan.
            """,
            decision="Payment ships alone on the planned day, the timetable two weeks later.",
            tasks=(("A", "Tell the islands about the new date and the reason", 2, "The harbour office has answered", True),),
            risk="Two releases in the first winter month leave no room for a storm week.",
            number=("Test days used", "11 of 14", "Payment not yet included"),
            dispute=("Keep the date of the winter release", "C", "Keep it, it was promised",
                     "B", "Two changes on one page cannot be told apart when one breaks",
                     "Split: payment first, the timetable two weeks later"),
        ),
    ),
)

MUSEUM = Team(
    "Tide and Timber Museum",
    ("Eleanor Frost", "Sam Whitaker", "Leila Haddad", "Ben Castillo"),
    (
        scene(
            "The boat that does not fit",
            "The fishing boat comes in through the roof light, in one piece, in the closed week.",
            """
            A: The boat is ours. The boat is also nine metres long, and the door is three. Ben?
            D #number: I measured twice. Through the roof light it clears by forty centimetres on each side.
            B #against: Sawing it in half and joining it again is what most places would do. It's cheaper.
            C #for: It survived ninety winters in one piece. I am not going to be the one with the saw.
            D: A crane for one morning is four thousand. Joining a hull properly is not less than that.
            B: Put like that, I withdraw the saw.
            A: The roof light it is. In the closed week, so nobody walks underneath.
            D #task: I'll book the crane {by} and ask the neighbours for their car park.
            C #task2: I'll have the cradle drawn {by2}, the hull must not rest on the keel alone.
            """,
            decision="The boat enters through the roof light, in one piece, during the closed week.",
            tasks=(("D", "Book the crane for the closed week", 4, "Crane and car park are confirmed", True),
                   ("C", "Draw the cradle for the hull", 8, "The boatbuilder has signed the drawing", True)),
            risk="Wind above force five stops the crane, and the week has only five days.",
            number=("Clearance through the roof light", "40 cm on each side", ""),
            dispute=("Cut the boat or lift it in", "C", "Keep it in one piece",
                     "B", "Cutting is cheaper", "Lift it through the roof light"),
        ),
        scene(
            "Labels that people read",
            "Labels are cut to forty words, with the surprising fact first.",
            """
            C: I stood in the rope room for an afternoon and timed how long people read.
            A: I'm afraid to ask.
            C #number: Six seconds. Our labels take fifty.
            B: So they read the first sentence, and the first sentence is always a date.
            C #insight: And they do stop where the label starts with something odd. The herring that was money: twenty seconds.
            D: Then start with the herring, everywhere.
            A: Forty words, the odd thing first, the date last. Can we do the whole room?
            B #task: Thirty-two labels. I'll rewrite ten {by} and we test them on Sunday.
            A: On real visitors, not on us. We like dates.
            """,
            decision="Labels have at most forty words and begin with the surprising fact.",
            tasks=(("B", "Rewrite ten labels of the rope room", 6, "Each has forty words or fewer", True),),
            step="Time visitors in the rope room again on Sunday.",
            number=("Time spent on a label", "6 seconds", "Our labels take 50 to read"),
            insight=("observation", "The odd fact stops people",
                     "A label that begins with the herring holds readers three times longer than one with a date."),
        ),
        scene(
            "School mornings",
            "School groups come on two mornings before opening, with one activity for the hands.",
            """
            B: Schools. Eight requests waiting, and we said yes to two.
            A: Why only two?
            D: Because thirty children and thirty visitors don't fit in the rope room. Somebody cries.
            B #idea: Open at nine for schools only. Tuesdays and Thursdays, an hour and a half.
            C: And let them do something. Last time they remembered the knot, not the talk.
            D #number: I have rope for forty children. After that it has to be bought, about two hundred a year.
            A: Two hundred I can find. Who opens at nine?
            B: I can take Tuesdays. Thursdays need somebody else.
            C #task: I'll ask the volunteers for Thursdays {by}, two of them were teachers.
            """,
            decision="Schools come on Tuesday and Thursday mornings at nine, with a knot to take home.",
            tasks=(("C", "Find volunteers for Thursday mornings", 7, "Two people for each Thursday", False),),
            question="Do we charge schools from outside the county?",
            number=("Rope for school groups", "200 a year", "Beyond the first forty children"),
            idea=("Open at nine for schools only", ("Children and visitors do not meet in one narrow room", "Six more groups a month"),
                  ("Someone has to open an hour early",)),
        ),
        scene(
            "Damp in the chart store",
            "The charts move to the upper floor now, the wall is opened in spring.",
            """
            C: The hygrometer in the chart store read seventy-eight on Monday. It should be fifty.
            A: Since when?
            C #number: It has crept up for three weeks. Seventy-eight is where mould begins.
            D #insight: Three weeks ago they paved next door. The rain used to sink in there, and now it runs to our wall.
            B: Can they be made to fix it?
            D: In time, yes. The charts don't have time.
            A: Then the charts first. Upstairs?
            C: The print room, it's dry and locked. Two hundred charts, flat, in their drawers.
            D #task: I'll move them with two helpers {by}.
            A #task2: And I'll write to the neighbours {by2}, in a friendly tone. For now.
            """,
            decision="All charts go to the print room at once; the wall is opened in spring.",
            tasks=(("D", "Move two hundred charts to the print room", 2, "The chart store is empty", True),
                   ("A", "Write to the neighbours about the paving", 3, None, True)),
            risk="Mould is already in the lower drawers, and we carry it upstairs.",
            number=("Humidity in the chart store", "78 %", "It should be 50 %"),
            insight=("cause", "The new paving sends the rain to our wall",
                     "The humidity began to rise in the week in which the yard next door was paved."),
        ),
        scene(
            "Late opening in summer",
            "On Fridays in summer the museum stays open until nine, with the café but without tours.",
            """
            B: Late Fridays. Last summer we tried one by accident, and it was our best evening.
            A: By accident?
            B #number: I forgot to lock. A hundred and thirty people between six and nine.
            D #for: Then let's do it on purpose. Every Friday, June to August.
            C #against: I'd be careful. One warm evening isn't a summer, and the staff would have no Fridays.
            D: Rotate. One Friday in four each.
            C: With that I can live, if there are no tours. Tours need three people.
            A: No tours, the café open, the upper floor closed. Simple.
            B #task: I'll ask the café {by}, they decide more than we do.
            """,
            decision="From June to August the museum is open on Fridays until nine, without tours.",
            tasks=(("B", "Ask the café about Friday evenings", 5, "The café has agreed to all the Fridays", False),),
            step="Put the late Fridays on the poster before it is printed.",
            number=("Visitors on the accidental evening", "130", "Between six and nine"),
            dispute=("Late opening every Friday", "D", "Every Friday, June to August",
                     "C", "One warm evening proves little, and staff lose their Fridays",
                     "Every Friday, one in four for each person, no tours"),
        ),
    ),
)

ROUTINES = (
    scene(
        "Holiday calendar",
        "The holiday calendar is settled: never more than one person away.",
        """
        A: Holidays. Who is away in the coming month?
        B: I am, two weeks from the middle. The tickets are bought.
        C: I had {days} in mind, in the same weeks. I can go later.
        A: Please do. We can't carry two absences.
        C: Then I go when {B} is back.
        D #task: I'll put everything into one calendar {by}.
        """,
        decision="Never more than one person away at a time.",
        tasks=(("D", "Put all holidays into one calendar", 4, "Everybody's days are in it", True),),
        slots={"days": ("three days", "four days", "a week")},
    ),
    scene(
        "Spending this month",
        "Spending is a little over plan for a reason that will not repeat.",
        """
        C: Money, briefly. We are over plan.
        A: By how much?
        C #number: By {percent}. Nearly all of it is one repair; without it we'd be level.
        B: And the repair is finished? It doesn't come twice?
        C: Finished and paid. Next month we are back.
        A: Then we just watch it. Thank you for saying it early.
        """,
        step="Compare spending with the plan at the start of next month.",
        number=("Spending over plan", "{percent}", "One repair"),
        slots={"percent": ("four per cent", "six per cent", "seven per cent")},
    ),
    scene(
        "Hiring one more person",
        "We look for one more person, first among people we know.",
        """
        A: We need another pair of hands, I think nobody disputes that. Where do we look?
        B: Ask around first. An advert brings a hundred letters, and five are worth reading.
        C #number: Last time it was {letters}, and we met four.
        D: And two of those four are still here, so it wasn't a bad day's reading.
        A: A week of asking around, then the advert.
        B #task: We need the text anyway. I'll draft it {by}, be merciless.
        """,
        decision="Ask around for a week, then advertise.",
        tasks=(("B", "Draft the job advert", 3, None, True),),
        risk="A good person will hardly start within two months.",
        number=("Letters to the last advert", "{letters}", "Four people were met"),
        slots={"letters": ("eighty-six", "a hundred and twelve", "seventy")},
    ),
    scene(
        "Complaints and praise",
        "Praise is for people, complaints are about not knowing how long something takes.",
        """
        B: Two weeks of feedback. More praise than complaints, clearly.
        A: Praise for what?
        B: For people. "Kind", "explained everything", "didn't rush me".
        D #number: And the complaints, all {bad} of them, are about waiting. Not one about the work itself.
        C #insight: So people do wait, they just want to know how long.
        A: Then let's say how long, at once, even when it's long.
        C #task: I'll write down how to say it {by}. Three sentences, no more.
        """,
        decision="We say at once how long it takes, even when it is long.",
        tasks=(("C", "Write three sentences about waiting times", 3, "They lie at every desk", True),),
        number=("Complaints about waiting", "{bad}", "No other complaints"),
        insight=("observation", "Waiting is fine, not knowing is not",
                 "Every complaint is about uncertainty, none about the wait itself."),
        slots={"bad": ("six", "nine", "eleven")},
    ),
    scene(
        "Shared folder",
        "The shared folder is sorted by year; old files go to the archive and are not deleted.",
        """
        D: The shared folder has four folders called "New folder". One holds the contracts.
        A: And a file called "final-final-really". Who sorts it?
        B: Simple rule: year, then subject. Anything older than two years goes to the archive.
        C: As long as nothing is deleted. Last year I needed a paper from five years back.
        B: Nothing is deleted. The archive reads just the same.
        D #task: I'll sort it {by}. Until then, nothing new at the top, please.
        """,
        decision="The shared folder is sorted by year and subject, older files go to the archive.",
        tasks=(("D", "Sort the shared folder by year and subject", 8, "Not a single file at the top", True),),
    ),
    scene(
        "Fire drill",
        "The fire drill comes without notice; staff stand at the doors.",
        """
        A: The fire drill is due this month. Do we announce it?
        C #for: I would. Somebody will be frightened otherwise.
        B #against: If we announce it everybody is out in a minute, and we learn nothing.
        D #number: Without notice it took {minutes} last time. With notice, two.
        A: No notice, but our people stand at the doors, so nobody runs.
        C: And put up where to gather. Half of us went round the wrong corner.
        D #task: I'll put up the signs {by}.
        """,
        decision="The drill is not announced; we gather at the main entrance.",
        tasks=(("D", "Put up signs for the gathering point", 5, "One sign on every floor", True),),
        number=("Time to leave without notice", "{minutes}", "With notice, two minutes"),
        dispute=("Announce the fire drill", "C", "Announce it, so that nobody is frightened",
                 "B", "Announced, it teaches nothing", "No notice, with people at the doors"),
        slots={"minutes": ("six minutes", "seven minutes", "five and a half minutes")},
    ),
    scene(
        "Days at home",
        "One day at home a week stays; Wednesday belongs to everybody.",
        """
        A: Days at home, one month in. How is it?
        B: Anything that needs quiet gets done. My report took one day instead of two.
        C: But on Thursday there were two of us here, and nothing could be decided.
        D: Make one day common, without exceptions. Wednesday.
        A: Wednesday suits everyone? Then the rest is one day of your choice, noted the day before.
        C: If it's noted, I'm happy.
        """,
        decision="One day at home a week by choice, Wednesday together.",
        question="May an unused day at home move to the next week?",
    ),
    scene(
        "Report for the board",
        "The report for the board shrinks to one page with three numbers.",
        """
        A: The board report. Eight pages, and I believe they read the first.
        B: We know they do. Page five had a joke about a hedgehog, and nobody noticed.
        C: One page, then. Three numbers, what changed, what is in the way.
        D: And the details on request, they don't go anywhere.
        A: Which three numbers?
        B #task: I'll suggest some {by}, and we can argue for ten minutes.
        """,
        decision="The board report is one page: three numbers, what changed, what is in the way.",
        tasks=(("B", "Suggest three numbers for the board report", 4, None, False),),
        question="Who answers questions about details while the author is away?",
    ),
    scene(
        "Keys and the door code",
        "Keys are counted and the door code changes.",
        """
        D: We have handed out more keys than there are people. {keys}, to be exact.
        A: Somebody left and kept theirs?
        D: Two did. And one key, I think, is in the flower pot.
        C: You can see it from the street, by the way.
        B: Change the code and keep a list. It's cheap, and it's quick.
        A: Yes. And the flower pot moves.
        D #task: I'll change the code {by} and tell each of you in person.
        """,
        decision="The door code changes and a key list is kept.",
        tasks=(("D", "Change the door code and start the key list", 1, "The old code opens nothing", True),),
        risk="Until the code changes, an old key still opens the door.",
        slots={"keys": ("Eleven", "Thirteen", "Nine")},
    ),
    scene(
        "The late contractor",
        "The contractor gets one last week while we ask others for a price.",
        """
        B: The contractor has moved the date again. Now it's {weeks}.
        A: Which time is this?
        B: The third. The reasons are always good, and the work is never there.
        C #against: Changing in the middle costs more. A new one starts by doing everything again.
        D #for: Waiting costs more still. Let's at least know other prices.
        A: One last week, and prices meanwhile. We decide at the next meeting.
        D #task: I'll ring two others {by} and compare honestly.
        """,
        tasks=(("D", "Get prices from two other contractors", 5, "Two written offers", True),),
        question="Do we change contractors if nothing moves within a week?",
        risk="The contractor fails a fourth time, and a new one starts from nothing.",
        dispute=("Wait for the contractor or change", "D", "Find out what others charge",
                 "C", "Changing in the middle costs more", "One last week, decided at the next meeting"),
        slots={"weeks": ("two weeks", "ten days", "three weeks")},
    ),
    scene(
        "Building work upstairs",
        "Building work starts upstairs; we look for a quiet place for calls, nothing is decided yet.",
        """
        B: They start building upstairs. Drilling from ten to six, they say.
        A: So all the time that we are here. For how long?
        B #number: They say {weeks}. Half as long again, I'd guess.
        C #insight: It isn't the day that suffers, it's the calls. The rest can be done to the sound of a drill.
        D: Then we need one quiet room, not another building.
        A: We have no spare room. Downstairs the corner office is empty, let's ask.
        D #task: I'll go down and ask {by}. If they refuse, we think again.
        """,
        tasks=(("D", "Ask downstairs about the corner office", 2, "A yes or a no", True),),
        question="Where do we make calls if the corner office is refused?",
        risk="Over the drilling we can neither ring anyone nor receive visitors.",
        number=("Building work upstairs", "{weeks}", "Probably longer"),
        insight=("observation", "Calls suffer, not the day", "One quiet room is enough; nobody has to move."),
        slots={"weeks": ("three weeks", "a month", "five weeks")},
    ),
    scene(
        "Five minutes in the morning",
        "For two weeks the day starts with five minutes standing: who does what, and who needs help.",
        """
        C #idea: Five minutes every morning, standing. Who does what, who needs help, done.
        D: Another meeting?
        C: Instead of two others. Half of our letters ask what one could ask at nine o'clock.
        B: Standing matters. Seated it takes half an hour.
        A: Two weeks, then. If it doesn't help we drop it without tears.
        """,
        decision="For two weeks the day starts with five minutes standing.",
        step="Decide after two weeks whether the five minutes stay.",
        idea=("Five minutes standing every morning", ("Fewer letters", "Help is offered at once"),
              ("Easily grows to half an hour",)),
    ),
    scene(
        "Rules for meetings",
        "Meetings last forty minutes at most, with the list sent the day before.",
        """
        B: May I raise the meetings themselves? This is the fourth this week.
        A: Fair. What do you suggest?
        B #idea: Forty minutes, and the list comes the day before. No list, no meeting.
        D: And if it's urgent?
        B: Urgent is a call of five minutes, not a meeting.
        C: Somebody should watch the clock. We could take turns.
        A: Let's take turns. {C}, will you begin? We try it for a month.
        """,
        decision="Meetings last forty minutes at most, the list comes the day before, we take turns watching the clock.",
        idea=("No list, no meeting", ("Fewer meetings", "Everybody comes prepared"),
              ("Urgent matters need another way",)),
    ),
)

LANGUAGE = Language(
    code="en",
    teams=(CLINIC, FERRY, MUSEUM),
    routines=ROUTINES,
    due=due,
    by=by,
    words={
        "date": "Date", "people": "Present", "summary": "Summary", "decisions": "Decisions",
        "tasks": "Action items", "steps": "Next steps", "questions": "Open questions",
        "risks": "Risks", "transcript": "Transcript · Транскрипт",
        "present": "{team}. Present: {people}.",
        "postponed": "Come back to “{topic}” at the next meeting.",
        "recap_due": ", due {due}", "recap_own": "Mine: {task}{due}.",
        "role_chair": "Chair", "role_chair_why": "Opens the meeting, leads through the topics and sums up.",
        "role_numbers": "Keeper of numbers", "role_numbers_why": "Brings a measurement instead of an impression.",
        "role_critic": "Critic", "role_critic_why": "Names the weak point of a proposal before it is accepted.",
    },
    phrases={
        "hello": ("Good morning, everybody. Can you hear me?", "Hello all. The recording is running, let's start.",
                  "Right, I think we are complete.", "Hi everyone. Let's start on time, for once."),
        "hello_back": ("Loud and clear.", "Hello. One second, the door… There, go ahead.", "Morning. All here.",
                       "We hear you. Could someone close the window?"),
        "small_talk": ("There's still tea, if anyone wants some.", "I have another call in an hour, so let's be brisk.",
                       "It's so windy that I left the umbrella at home.",
                       "The last protocol helped, by the way: half of it turned out to be done."),
        "agenda": ("Today we have: {topics}.", "Here is the list: {topics}.", "In this order, please: {topics}."),
        "next": ("Moving on. Next is: {topic}.", "That's clear. Now: {topic}.", "Good. The next one: {topic}.",
                 "Noted. Then we have: {topic}."),
        "invented": ("I will report to the board before the holidays.", "I will buy all of it myself by Monday."),
        "nod": ("Exactly.", "I agree.", "Makes sense.", "Mm-hm.", "That's right."),
        "postpone": ("No time left for the last one: {topic}. We'll move it.",
                     "One thing we won't manage today: {topic}. We'll begin with it next time."),
        "sum_up": ("Let me sum up.", "Briefly, who does what.", "I'll say the tasks aloud, so that nothing gets lost."),
        "recap": ("{name}, yours is: {task}{due}.", "{name}: {task}{due}. Right?", "Then {name}: {task}{due}."),
        "accept": ("Yes, that's right.", "Agreed.", "Writing it down.", "Yes, I'll manage.", "Fine."),
        "bye": ("That's all. Thank you for keeping it short.", "We're done. The protocol comes by itself.",
                "Thank you all, until next time."),
        "bye_back": ("Thanks, bye.", "Thank you. Have a good day.", "Bye, everyone."),
    },
)
