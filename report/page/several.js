// Several reports: a column for each host, those that agree folded together.

const MOST_COLUMNS = 8;

/** Hosts with the same outcomes, those with most bad items first. */
function groupHosts(hosts) {
  const groups = new Map();
  for (const host of hosts) {
    if (!groups.has(host.key)) groups.set(host.key, {hosts: [], at: host.at, bad: host.bad});
    groups.get(host.key).hosts.push(host);
  }
  return [...groups.values()].sort((a, b) => b.bad - a.bad || b.hosts.length - a.hosts.length);
}

const groupName = ({hosts}) => hosts.length === 1 ? hosts[0].label : `${hosts[0].label} and ${hosts.length - 1} more`;

function hostNames(hosts) {
  const names = hosts.slice(0, 20).map(host => host.label).join(', ');
  return hosts.length > 20 ? `${names} and ${hosts.length - 20} more` : names;
}

/** The rows with what the groups of hosts have there, the worst and what differs first. */
function comparison(rows, groups) {
  for (const [at, row] of rows.entries()) {
    row.spread = new Map();
    for (const group of groups) {
      const item = group.at(at);
      row.spread.set(item, [...row.spread.get(item) || [], group]);
    }
    row.at = at;
    row.differs = row.spread.size > 1;
    row.rank = Math.min(...row.items.map(rank));
    row.badHosts = [...row.spread].reduce((sum, [item, where]) => sum + (item?.bad ? hostsOf(where).length : 0), 0);
  }
  return [...rows].sort((a, b) => b.badHosts - a.badHosts || b.differs - a.differs || a.rank - b.rank);
}

const hostsOf = groups => groups.flatMap(group => group.hosts);

/** How many of the hosts have which outcome; each shows who they are. */
function spread(row, groups) {
  const counts = new Map();
  for (const group of groups) {
    const item = group.at(row.at);
    counts.set(item, [...counts.get(item) || [], ...group.hosts]);
  }
  const sorted = [...counts].sort(([a], [b]) => (a ? rank(a) : LEGEND.length) - (b ? rank(b) : LEGEND.length));
  return sorted.map(([item, hosts]) => make('div', null, `${hosts.length} × `, item
    ? make('button', {type: 'button', class: `verdict ${look(item.verdict)}`, click: () => show(item, hostNames(hosts)),
                      'aria-label': `${visible(item.verdict)} on ${plural(hosts.length, 'host')}, details of ${visible(item.label)}`}, mark(item.verdict))
    : make('span', {class: 'quiet'}, 'not there')));
}

function hostColumns(groups) {
  const shown = groups.length <= MOST_COLUMNS ? groups : groups.slice(0, MOST_COLUMNS - 1);
  const isCut = shown.length < groups.length;
  const gravityAt = (row, group) => group.at(row.at) ? rank(group.at(row.at)) : LEGEND.length;
  const columns = shown.map(group => ({
    title: foreign(groupName(group)), width: 11, cell: row => [verdictCell(group.at(row.at)), shortReason(group.at(row.at))], key: row => gravityAt(row, group)}));
  if (isCut) columns.unshift({title: `All ${hostsOf(groups).length} hosts`, width: 13, cell: row => spread(row, groups), key: row => -row.badHosts});
  return columns;
}

function severalReports(hosts, rows) {
  const groups = groupHosts(hosts);
  const sorted = comparison(rows, groups);
  const differing = rows.filter(row => row.differs).length;
  const items = rows.flatMap(row => row.items);
  const places = new Map(rows.flatMap(row => [...row.spread].map(([item, where]) => [item, hostsOf(where)])));
  const count = item => (places.get(item) || []).length;
  const bad = badList([...items].sort((a, b) => count(b) - count(a)), item => `${count(item)} of ${plural(hosts.length, 'host')}: ${hostNames(places.get(item) || [])}`);
  const table = dataTable('What is bad on most hosts comes first, then what differs', [
    {title: 'Item', width: 16, cell: row => [foreign(row.label), sameness(row)], key: row => row.label}, ...hostColumns(groups)], sorted);
  return {items, tables: [table], showItems: bad.filter, several: true, total: rows.length,
          result: `${differing} of ${plural(rows.length, 'item')} ${differing === 1 ? 'differs' : 'differ'} between ${plural(hosts.length, 'host')}; ` +
                  `${rows.filter(row => row.badHosts).length} are bad on any.`,
          sections: [bad.element, section('items', `Items (${rows.length})`, table.element),
                     section('machines', `Hosts (${hosts.length})`, hostTable(groups))]};
}

const sameness = row => make('div', {class: 'quiet'}, `${visible(row.kind)}, `, row.differs ? make('strong', null, '≠\u00a0differs') : 'same');
const shortReason = item => item && item.bad && item.reason ? make('div', {class: 'quiet'}, foreign(clipped(item.reason, 80))) : null;

function hostTable(groups) {
  const rows = groups.flatMap((group, at) => group.hosts.map(host => ({host, group: at + 1})));
  const text = (title, width, value) => ({title, width, cell: ({host}) => foreign(value(host)), key: ({host}) => value(host) || null});
  const table = dataTable('Hosts with the same group number agree in everything', [
    text('Host', 14, host => host.label),
    {title: 'Bad', width: 4.5, style: 'number', cell: ({host}) => String(host.bad), key: ({host}) => host.bad},
    {title: 'Group', width: 5, style: 'number', cell: row => String(row.group), key: row => row.group},
    {title: 'Complete', width: 6.5, cell: ({host}) => host.complete ? 'yes' : make('strong', null, 'no'), key: ({host}) => Number(host.complete)},
    text('System', 12, host => string(host.machine.system)), text('Kernel', 10, host => string(host.machine.kernel)),
    text('Graphics', 12, host => list(host.machine.graphics).map(string).join(', ')), text('Started', 11, host => date(host.started)),
    {title: 'Took', width: 5.5, style: 'number', cell: ({host}) => duration(host.seconds), key: ({host}) => host.seconds},
  ], rows);
  table.show(() => true);
  return table.element;
}

