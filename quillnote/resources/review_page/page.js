// Filters, pictures that slide over each other, and the way from a number to its place and back. Without it the page
// shows the same marks and pictures, side by side.
'use strict';
(() => {
  const all = (selector, root = document) => [...root.querySelectorAll(selector)];
  const find = (id) => document.getElementById(id);
  document.documentElement.classList.add('js');

  const marks = all('.mark').map((element) => ({
    element,
    place: find('p' + element.id.slice(1)),
    reviewer: element.dataset.reviewer,
    state: element.dataset.state,
    drawing: element.closest('.drawing').id,
    words: null,
  }));

  // Filters ------------------------------------------------------------------------------------

  const choices = {reviewer: find('reviewer'), state: find('state'), drawing: find('drawing')};
  const words = find('words');
  const count = find('count');

  function offer(select, values) {
    for (const [value, label] of values) {
      const option = document.createElement('option');
      option.value = 'v' + value; // An empty value chooses everything.
      option.textContent = label;
      select.append(option);
    }
    select.hidden = values.size < 2;
  }

  function wordsOf(mark) {
    mark.words ??= mark.element.textContent.toLowerCase();
    return mark.words;
  }

  function filter() {
    const wanted = words.value.trim().toLowerCase();
    let shown = 0;
    for (const mark of marks) {
      const fits = Object.entries(choices).every(([name, select]) => !select.value || select.value === 'v' + mark[name])
        && (!wanted || wordsOf(mark).includes(wanted));
      mark.element.hidden = !fits;
      mark.place?.classList.toggle('out', !fits);
      shown += fits;
    }
    for (const drawing of all('.drawing')) {
      drawing.hidden = choices.drawing.value ? choices.drawing.value !== 'v' + drawing.id
        : all('.mark', drawing).length > 0 && !all('.mark:not([hidden])', drawing).length;
    }
    count.textContent = shown + ' / ' + marks.length;
  }

  offer(choices.reviewer, new Map(marks.map((mark) => [mark.reviewer, mark.reviewer])));
  offer(choices.state, new Map(marks.map((mark) => [mark.state, mark.state])));
  offer(choices.drawing, new Map(all('.drawing').map((drawing) => [drawing.id, drawing.querySelector('h2').textContent])));
  for (const control of [...Object.values(choices), words]) {
    control.addEventListener('input', filter);
  }
  filter();

  // Then and now -------------------------------------------------------------------------------

  document.addEventListener('input', (event) => {
    const frames = event.target.closest('.frames');
    if (frames) {
      frames.style.setProperty('--cut', event.target.value + '%');
    }
  });

  // From a number to its place and back --------------------------------------------------------

  const isSeen = (element) => {
    const box = element.getBoundingClientRect();
    return box.bottom > 60 && box.top < innerHeight - 60;
  };

  function choose(element) {
    all('.on').forEach((other) => other.classList.remove('on'));
    element.classList.add('on');
  }

  function showPlace(place) {
    const svg = place.ownerSVGElement;
    const [width, height] = svg.dataset.size.split(' ').map(Number);
    const box = place.querySelector('rect').getBBox();
    const part = Math.min(1, Math.max(0.2, 3 * box.width / width, 3 * box.height / height));
    const x = box.x + box.width / 2 - part * width / 2;
    const y = box.y + box.height / 2 - part * height / 2;
    svg.setAttribute('viewBox', [x, y, part * width, part * height].join(' '));
    choose(place);
    if (!isSeen(svg)) {
      svg.scrollIntoView({block: 'center'});
    }
    svg.closest('.overviews').scrollTop = svg.closest('figure').offsetTop;
  }

  document.addEventListener('click', (event) => {
    const number = event.target.closest('.number');
    const place = event.target.closest('.place');
    const whole = event.target.closest('.whole');
    if (number && find(number.hash.slice(1))) {
      event.preventDefault();
      showPlace(find(number.hash.slice(1)));
    } else if (place) {
      event.preventDefault();
      const mark = find('m' + place.id.slice(1));
      choose(mark);
      mark.scrollIntoView({block: 'center'});
    } else if (whole) {
      const svg = whole.closest('figure').querySelector('svg');
      svg.setAttribute('viewBox', '0 0 ' + svg.dataset.size);
    }
  });
})();
